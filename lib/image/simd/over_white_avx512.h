#pragma once

#include "lib/image/simd/over_white.h"

namespace imgbasic {
namespace {

struct OverWhiteAvx512 {
    /// The lanes in which (channel * alpha) * inverse, truncated, is one less than `channel`, as
    /// Shortfall in over_white_avx2.h.
    static __mmask8 ShortLanes(__m512i channel, __m512d alpha, __m512d inverse) {
        const __m512d whole = _mm512_cvtepu64_pd(channel);
        const __m512d back = _mm512_mul_pd(_mm512_mul_pd(whole, alpha), inverse);
        return _mm512_cmp_pd_mask(back, whole, _CMP_LT_OQ);
    }

    template <Colors kColors>
    static TwoVectors Of(const TwoVectors& halves) {
        const __m512i pixels =
            _mm512_inserti64x4(_mm512_castsi256_si512(halves.first), halves.second, 1);
        const __m512i alphas = _mm512_srli_epi64(pixels, 48);
        const __mmask8 transparent = _mm512_testn_epi64_mask(alphas, alphas);
        if (transparent == 0xFF) {
            return {TransparentWhite(), TransparentWhite()};
        }
        // A transparent pixel beside visible ones is divided as well, before its result is
        // dropped; a host may have unmasked the exception of a division by zero.
        const __m512d whole = _mm512_max_pd(_mm512_cvtepu64_pd(alphas), _mm512_set1_pd(1.0));
        const __m512d alpha = _mm512_fmadd_pd(whole, _mm512_set1_pd(kReciprocalHigh),
                                              _mm512_mul_pd(whole, _mm512_set1_pd(kReciprocalLow)));
        const __m512d inverse = _mm512_div_pd(_mm512_set1_pd(1.0), alpha);
        __m512i colors = pixels;
        const auto lessOne = [&](__mmask8 lanes, int shift) {
            colors = _mm512_mask_sub_epi64(colors, lanes, colors, _mm512_set1_epi64(1LL << shift));
        };
        const auto composite = [&](Colors color, int shift) {
            if ((kColors & color) != 0) {
                const __m512i channel =
                    _mm512_and_si512(pixels, _mm512_set1_epi64(0xFFFFLL << shift));
                lessOne(ShortLanes(channel, alpha, inverse), shift);
            }
        };
        composite(kRed, 0);
        composite(kGreen, 16);
        composite(kBlue, 32);
        const __m512d alphaBack = _mm512_mul_pd(alpha, _mm512_set1_pd(kFullScale));
        lessOne(_mm512_cmp_pd_mask(alphaBack, whole, _CMP_LT_OQ), 48);
        colors =
            _mm512_mask_mov_epi64(colors, transparent, _mm512_broadcast_i64x4(TransparentWhite()));
        return {_mm512_castsi512_si256(colors), _mm512_extracti64x4_epi64(colors, 1)};
    }
};

}  // namespace
}  // namespace imgbasic
