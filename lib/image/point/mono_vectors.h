#pragma once

#include <immintrin.h>

#include "lib/image/point/mono_forms.h"
#include "lib/image/simd/over_white.h"

// Two-level conversion for the files compiled for one instruction set.
namespace imgbasic {

/// ToTwoLevels with OverWhiteAvx2 or OverWhiteAvx512.
template <typename OverWhite>
static inline void ToTwoLevelsInVectors(RGBA16* dst, const RGBA16* src, size_t count, int32_t level,
                                        Store store) {
    // 64 bits, since a level may lie beyond what a channel's 16 bits can be compared with.
    const __m256i below = _mm256_set1_epi64x(int64_t{level} - 1);
    const auto toLevels = [&](__m256i colors) {
        const __m256i red = _mm256_and_si256(colors, _mm256_set1_epi64x(0xFFFF));
        const __m256i isWhite = _mm256_cmpgt_epi64(red, below);
        return _mm256_or_si256(_mm256_and_si256(isWhite, TransparentWhite()),
                               _mm256_and_si256(colors, AlphaLanes()));
    };
    ForEachOverWhite<OverWhite, kRed>(
        dst, src, count, store,
        [&](RGBA16* to, const RGBA16* from, size_t pixels) {
            ToTwoLevelsScalar(to, from, pixels, level, store);
        },
        [&](const TwoVectors& colors) {
            return TwoVectors{toLevels(colors.first), toLevels(colors.second)};
        });
}

}  // namespace imgbasic
