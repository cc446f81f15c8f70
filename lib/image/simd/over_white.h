#pragma once

#include <immintrin.h>

#include "lib/image/simd/vector_run.h"

// The step that greyscale and two-level conversion share, for the files compiled for AVX2 and
// AVX-512. All of it has internal linkage, for the reason that vector_run.h gives.
//
// A pixel is a lane of 64 bits, its channels the lane's words:
//
//      bits   63 ... 48 | 47 ... 32 | 31 ... 16 | 15 ... 0
//               alpha   |   blue    |   green   |   red
//
// Over transparent white a colour becomes (channel * alpha) * (1 / alpha), which would be the
// channel itself but for rounding and truncating: it stays, or loses 1. So nothing is converted
// back from doubles; only whether it loses 1 is found out, by comparing, and subtracted. Opaque
// pixels stay as they are and fully transparent ones become white.
namespace imgbasic {

/// Eight neighbouring pixels, or what is computed of them.
struct TwoVectors {
    __m256i first;
    __m256i second;
};

/// The colour channels that a kernel looks at, a bit for each; what becomes of others is open.
enum Colors : unsigned { kRed = 1, kGreen = 2, kBlue = 4, kAllColors = 7 };

/// 1 / 65280 in two parts. value * high + value * low, the sum fused with the first product, is
/// value / 65280.0, correctly rounded for integers of 16 bits (Brisebarre, Muller, Raina, 2004).
constexpr double kReciprocalHigh = 0x1.010101010101p-16;
constexpr double kReciprocalLow = 0x1.010101010101p-72;

static inline __m256i AlphaLanes() {
    return _mm256_set1_epi64x(static_cast<long long>(0xFFFF'0000'0000'0000));
}

/// White of no alpha: every colour channel at kFullScale.
static inline __m256i TransparentWhite() {
    return _mm256_set1_epi64x(0x0000'FF00'FF00'FF00);
}

static inline bool AreOpaque(const TwoVectors& pixels) {
    const __m256i opaque = _mm256_set1_epi16(static_cast<short>(kFullScale));
    const __m256i missing = _mm256_or_si256(_mm256_xor_si256(pixels.first, opaque),
                                            _mm256_xor_si256(pixels.second, opaque));
    return _mm256_testz_si256(missing, AlphaLanes()) != 0;
}

/// Writes `ofColors` of the pixels of `src`, composited over transparent white, to `dst`;
/// `scalarRow(dst, src, count)` does what is left at the ends. `OverWhite::Of<kColors>` composites
/// eight pixels by one instruction set.
template <typename OverWhite, Colors kColors, typename OfColors, typename ScalarRow>
static inline void ForEachOverWhite(RGBA16* dst, const RGBA16* src, size_t count, Store store,
                                    ScalarRow scalarRow, OfColors ofColors) {
    constexpr size_t kVector = sizeof(__m256i) / sizeof(RGBA16);
    ForEachLine(
        dst, count, store,
        [&](size_t begin, size_t end) { scalarRow(dst + begin, src + begin, end - begin); },
        [&](size_t i, bool streaming) {
            const auto* address = reinterpret_cast<const __m256i*>(src + i);
            const TwoVectors pixels{_mm256_loadu_si256(address), _mm256_loadu_si256(address + 1)};
            const TwoVectors results =
                ofColors(AreOpaque(pixels) ? pixels : OverWhite::template Of<kColors>(pixels));
            StoreVector(dst + i, results.first, streaming);
            StoreVector(dst + i + kVector, results.second, streaming);
        });
}

}  // namespace imgbasic
