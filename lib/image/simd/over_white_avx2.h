#pragma once

#include "lib/image/simd/over_white.h"

namespace imgbasic {
namespace {

// Integers below 2^52 become doubles exactly as the mantissa of a double from 2^52 on, whose last
// place is 1. A colour channel stays where it stands, which scales it by a power of two:
//
//      2^52             0x433 |   0   |   0   |   0
//      with green       0x433 |   0   | green |   0      = 2^52 + green * 2^16

__m256d TwoTo52() {
    return _mm256_set1_pd(0x1p52);
}

__m256d Lowered(__m256i raised) {
    return _mm256_sub_pd(_mm256_castsi256_pd(raised), TwoTo52());
}

/// All ones, which is -1, in the lanes where (channel * alpha) * inverse, truncated, is one less
/// than `channel`, else 0. Three roundings are too few to miss it by more. The channel's scale
/// scales every step exactly. A mask of 64 ones is -1 in every word of it.
/// Channels that are not among kColors have none.
template <Colors kColors, int kWord>
__m256i Shortfall(__m256i pixels, __m256d alpha, __m256d inverse) {
    if ((kColors & 1 << kWord) == 0) {
        return _mm256_setzero_si256();
    }
    const __m256d channel =
        Lowered(_mm256_blend_epi16(_mm256_castpd_si256(TwoTo52()), pixels, 0b0001'0001 << kWord));
    const __m256d back = _mm256_mul_pd(_mm256_mul_pd(channel, alpha), inverse);
    return _mm256_castpd_si256(_mm256_cmp_pd(back, channel, _CMP_LT_OQ));
}

/// OverTransparentWhite of four pixels.
template <Colors kColors>
__m256i FourOverWhite(__m256i pixels) {
    if (_mm256_testz_si256(pixels, AlphaLanes()) != 0) {
        return TransparentWhite();
    }
    const __m256i alphas = _mm256_srli_epi64(pixels, 48);
    // A transparent pixel beside visible ones is divided as well, before its result is dropped; a
    // host may have unmasked the exception of a division by zero.
    const __m256d whole = _mm256_max_pd(
        Lowered(_mm256_or_si256(alphas, _mm256_castpd_si256(TwoTo52()))), _mm256_set1_pd(1.0));
    const __m256d alpha = _mm256_fmadd_pd(whole, _mm256_set1_pd(kReciprocalHigh),
                                          _mm256_mul_pd(whole, _mm256_set1_pd(kReciprocalLow)));
    const __m256d inverse = _mm256_div_pd(_mm256_set1_pd(1.0), alpha);
    const __m256i red = Shortfall<kColors, 0>(pixels, alpha, inverse);
    const __m256i green = Shortfall<kColors, 1>(pixels, alpha, inverse);
    const __m256i blue = Shortfall<kColors, 2>(pixels, alpha, inverse);
    const __m256d alphaBack = _mm256_mul_pd(alpha, _mm256_set1_pd(kFullScale));
    const __m256i alphaShortfall = _mm256_castpd_si256(_mm256_cmp_pd(alphaBack, whole, _CMP_LT_OQ));
    const __m256i redGreen = _mm256_blend_epi16(red, green, 0b0010'0010);
    const __m256i blueAlpha = _mm256_blend_epi16(blue, alphaShortfall, 0b1000'1000);
    const __m256i shortfalls = _mm256_blend_epi16(redGreen, blueAlpha, 0b1100'1100);
    const __m256i transparent = _mm256_cmpeq_epi64(alphas, _mm256_setzero_si256());
    return _mm256_blendv_epi8(_mm256_add_epi16(pixels, shortfalls), TransparentWhite(),
                              transparent);
}

struct OverWhiteAvx2 {
    template <Colors kColors>
    static TwoVectors Of(const TwoVectors& pixels) {
        return {FourOverWhite<kColors>(pixels.first), FourOverWhite<kColors>(pixels.second)};
    }
};

}  // namespace
}  // namespace imgbasic
