#pragma once

#include <immintrin.h>

#include "lib/image/simd/vector_run.h"

// The step that greyscale and two-level conversion share, for the files compiled for AVX2. All
// of it has internal linkage, for the reason that vector_run.h gives.
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

static inline __m256i AlphaLanes() {
    return _mm256_set1_epi64x(static_cast<long long>(0xFFFF'0000'0000'0000));
}

static inline bool AreOpaque(__m256i pixels1, __m256i pixels2) {
    const __m256i opaque = _mm256_set1_epi16(static_cast<short>(kFullScale));
    const __m256i missing =
        _mm256_or_si256(_mm256_xor_si256(pixels1, opaque), _mm256_xor_si256(pixels2, opaque));
    return _mm256_testz_si256(missing, AlphaLanes()) != 0;
}

/// 64-bit integers below 2^52 as doubles, which is exact: they are the mantissa of a double from
/// 2^52 on, whose last place is 1.
///
///      2^52           | sign, exponent: 0x433 |      0         |
///      OR integer     |         0x433         |    integer     |   = 2^52 + integer
static inline __m256d ToDouble(__m256i integers) {
    const __m256d offset = _mm256_set1_pd(0x1p52);
    return _mm256_sub_pd(
        _mm256_castsi256_pd(_mm256_or_si256(integers, _mm256_castpd_si256(offset))), offset);
}

/// value / 65280.0, correctly rounded for integers of 16 bits: the reciprocal in two parts and a
/// fused multiply-add instead of a division (Brisebarre, Muller, Raina, 2004).
static inline __m256d DividedByFullScale(__m256d value) {
    const __m256d high = _mm256_set1_pd(0x1.010101010101p-16);
    const __m256d low = _mm256_set1_pd(0x1.010101010101p-72);
    return _mm256_fmadd_pd(value, high, _mm256_mul_pd(value, low));
}

/// All ones, which is -1, in the lanes where (channel * alpha) * inverse, truncated, is one less
/// than `channel`, else 0. Three roundings are too few to miss it by more. The channel may be
/// scaled by a power of two, which scales every step exactly: it is compared where it stands in its
/// lane, without being shifted down. A mask of 64 ones is -1 in every word of it.
static inline __m256i Shortfall(__m256i channel, __m256d alpha, __m256d inverse) {
    const __m256d whole = ToDouble(channel);
    const __m256d back = _mm256_mul_pd(_mm256_mul_pd(whole, alpha), inverse);
    return _mm256_castpd_si256(_mm256_cmp_pd(back, whole, _CMP_LT_OQ));
}

/// OverTransparentWhite of four pixels.
static inline __m256i OverTransparentWhiteAvx2(__m256i pixels) {
    const __m256i white = _mm256_set1_epi64x(0x0000'FF00'FF00'FF00);
    if (_mm256_testz_si256(pixels, AlphaLanes()) != 0) {
        return white;
    }
    const __m256i alphas = _mm256_srli_epi64(pixels, 48);
    // A transparent pixel beside visible ones is divided as well, before its result is dropped; a
    // host may have unmasked the exception of a division by zero.
    const __m256d whole = _mm256_max_pd(ToDouble(alphas), _mm256_set1_pd(1.0));
    const __m256d alpha = DividedByFullScale(whole);
    const __m256d inverse = _mm256_div_pd(_mm256_set1_pd(1.0), alpha);
    const auto shortfall = [&](long long channelBits) {
        const __m256i channel = _mm256_and_si256(pixels, _mm256_set1_epi64x(channelBits));
        return Shortfall(channel, alpha, inverse);
    };
    const __m256i red = shortfall(0xFFFF);
    const __m256i green = shortfall(0xFFFF'0000);
    const __m256i blue = shortfall(0xFFFF'0000'0000);
    const __m256d alphaBack = _mm256_mul_pd(alpha, _mm256_set1_pd(kFullScale));
    const __m256i alphaShortfall = _mm256_castpd_si256(_mm256_cmp_pd(alphaBack, whole, _CMP_LT_OQ));
    const __m256i redGreen = _mm256_blend_epi16(red, green, 0b0010'0010);
    const __m256i blueAlpha = _mm256_blend_epi16(blue, alphaShortfall, 0b1000'1000);
    const __m256i shortfalls = _mm256_blend_epi16(redGreen, blueAlpha, 0b1100'1100);
    const __m256i transparent = _mm256_cmpeq_epi64(alphas, _mm256_setzero_si256());
    return _mm256_blendv_epi8(_mm256_add_epi16(pixels, shortfalls), white, transparent);
}

/// Eight neighbouring pixels, or what is computed of them.
struct TwoVectors {
    __m256i first;
    __m256i second;
};

/// Writes `ofColors` of the pixels of `src`, composited over transparent white, to `dst`;
/// `scalarRow(dst, src, count)` does what is left at the ends.
template <typename OfColors, typename ScalarRow>
static inline void ForEachOverWhite(RGBA16* dst, const RGBA16* src, size_t count, Store store,
                                    ScalarRow scalarRow, OfColors ofColors) {
    constexpr size_t kVector = sizeof(__m256i) / sizeof(RGBA16);
    ForEachLine(
        dst, count, store,
        [&](size_t begin, size_t end) { scalarRow(dst + begin, src + begin, end - begin); },
        [&](size_t i, bool streaming) {
            const auto* address = reinterpret_cast<const __m256i*>(src + i);
            __m256i pixels1 = _mm256_loadu_si256(address);
            __m256i pixels2 = _mm256_loadu_si256(address + 1);
            if (!AreOpaque(pixels1, pixels2)) {
                pixels1 = OverTransparentWhiteAvx2(pixels1);
                pixels2 = OverTransparentWhiteAvx2(pixels2);
            }
            const TwoVectors results = ofColors(TwoVectors{pixels1, pixels2});
            StoreVector(dst + i, results.first, streaming);
            StoreVector(dst + i + kVector, results.second, streaming);
        });
}

}  // namespace imgbasic
