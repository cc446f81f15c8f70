#include <immintrin.h>

#include "lib/image/point/invert_tones_forms.h"
#include "lib/image/simd/vector_run.h"

namespace imgbasic {

void InvertTonesAvx2(RGBA16* dst, const RGBA16* src, size_t count, Store store) {
    constexpr size_t kStep = sizeof(__m256i) / sizeof(RGBA16);
    const __m256i fullScale = _mm256_set1_epi16(static_cast<short>(kFullScale));
    const __m256i alphaLanes = _mm256_set1_epi64x(static_cast<long long>(0xFFFF'0000'0000'0000));

    const auto invert = [&](size_t i, bool streaming) {
        const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + i));
        const __m256i inverted = _mm256_sub_epi16(fullScale, pixels);
        StoreVector(dst + i, _mm256_blendv_epi8(inverted, pixels, alphaLanes), streaming);
    };
    ForEachLine(
        dst, count, store,
        [&](size_t begin, size_t end) {
            InvertTonesScalar(dst + begin, src + begin, end - begin, store);
        },
        [&](size_t i, bool streaming) {
            invert(i, streaming);
            invert(i + kStep, streaming);
        });
}

}  // namespace imgbasic
