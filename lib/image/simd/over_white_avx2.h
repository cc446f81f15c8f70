#pragma once

#include "lib/image/simd/over_white.h"

namespace imgbasic {
namespace {

/// 64-bit integers below 2^52 as doubles, which is exact: they are the mantissa of a double from
/// 2^52 on, whose last place is 1.
///
///      2^52           | sign, exponent: 0x433 |      0         |
///      OR integer     |         0x433         |    integer     |   = 2^52 + integer
__m256d ToDouble(__m256i integers) {
    const __m256d offset = _mm256_set1_pd(0x1p52);
    return _mm256_sub_pd(
        _mm256_castsi256_pd(_mm256_or_si256(integers, _mm256_castpd_si256(offset))), offset);
}

/// All ones, which is -1, in the lanes where (channel * alpha) * inverse, truncated, is one less
/// than `channel`, else 0. Three roundings are too few to miss it by more. The channel may be
/// scaled by a power of two, which scales every step exactly: it is compared where it stands in its
/// lane, without being shifted down. A mask of 64 ones is -1 in every word of it.
__m256i Shortfall(__m256i channel, __m256d alpha, __m256d inverse) {
    const __m256d whole = ToDouble(channel);
    const __m256d back = _mm256_mul_pd(_mm256_mul_pd(whole, alpha), inverse);
    return _mm256_castpd_si256(_mm256_cmp_pd(back, whole, _CMP_LT_OQ));
}

/// OverTransparentWhite of four pixels.
template <Colors kColors>
__m256i FourOverWhite(__m256i pixels) {
    const __m256i white = _mm256_set1_epi64x(0x0000'FF00'FF00'FF00);
    if (_mm256_testz_si256(pixels, AlphaLanes()) != 0) {
        return white;
    }
    const __m256i alphas = _mm256_srli_epi64(pixels, 48);
    // A transparent pixel beside visible ones is divided as well, before its result is dropped; a
    // host may have unmasked the exception of a division by zero.
    const __m256d whole = _mm256_max_pd(ToDouble(alphas), _mm256_set1_pd(1.0));
    const __m256d alpha = _mm256_fmadd_pd(whole, _mm256_set1_pd(kReciprocalHigh),
                                          _mm256_mul_pd(whole, _mm256_set1_pd(kReciprocalLow)));
    const __m256d inverse = _mm256_div_pd(_mm256_set1_pd(1.0), alpha);
    const auto shortfall = [&](Colors color, int shift) {
        if ((kColors & color) == 0) {
            return _mm256_setzero_si256();
        }
        const __m256i channel = _mm256_and_si256(pixels, _mm256_set1_epi64x(0xFFFFLL << shift));
        return Shortfall(channel, alpha, inverse);
    };
    const __m256i red = shortfall(kRed, 0);
    const __m256i green = shortfall(kGreen, 16);
    const __m256i blue = shortfall(kBlue, 32);
    const __m256d alphaBack = _mm256_mul_pd(alpha, _mm256_set1_pd(kFullScale));
    const __m256i alphaShortfall = _mm256_castpd_si256(_mm256_cmp_pd(alphaBack, whole, _CMP_LT_OQ));
    const __m256i redGreen = _mm256_blend_epi16(red, green, 0b0010'0010);
    const __m256i blueAlpha = _mm256_blend_epi16(blue, alphaShortfall, 0b1000'1000);
    const __m256i shortfalls = _mm256_blend_epi16(redGreen, blueAlpha, 0b1100'1100);
    const __m256i transparent = _mm256_cmpeq_epi64(alphas, _mm256_setzero_si256());
    return _mm256_blendv_epi8(_mm256_add_epi16(pixels, shortfalls), white, transparent);
}

struct OverWhiteAvx2 {
    template <Colors kColors>
    static TwoVectors Of(const TwoVectors& pixels) {
        return {FourOverWhite<kColors>(pixels.first), FourOverWhite<kColors>(pixels.second)};
    }
};

}  // namespace
}  // namespace imgbasic
