#include <immintrin.h>

#include "lib/image/point/gray_forms.h"
#include "lib/image/simd/over_white_avx2.h"

namespace imgbasic {
namespace {

// A pixel fills a lane of 64 bits; its grey value is made in the lane's low 32 bits:
//
//      colors    | alpha | blue | green | red |      words 3, 2, 1, 0
//      values    |   ?   |   ?  |   grey      |
//
// What stands in the words marked with ? does not matter: SpreadWord takes words 0 and 1 only.

__m256i LargestChannel(__m256i colors) {
    return _mm256_max_epu16(
        colors, _mm256_max_epu16(_mm256_srli_epi64(colors, 16), _mm256_srli_epi64(colors, 32)));
}

__m256i SmallestChannel(__m256i colors) {
    return _mm256_min_epu16(
        colors, _mm256_min_epu16(_mm256_srli_epi64(colors, 16), _mm256_srli_epi64(colors, 32)));
}

/// r * R + g * G + b * B, where neither the sum nor a part of it may leave 32 bits.
__m256i WeightedChannels(__m256i colors, short r, short g, short b) {
    // madd multiplies signed words and adds them in pairs, red with green and blue with alpha; a
    // shift brings the second sum under the first. Channels reach beyond signed words, so that they
    // get 0x8000 taken off first (by XOR, which is the same), and the sum gets it back in one:
    // r * (R - 0x8000) + ... + (r + g + b) * 0x8000. Nothing on the way leaves 32 bits.
    const __m256i weights = _mm256_setr_epi16(r, g, b, 0, r, g, b, 0, r, g, b, 0, r, g, b, 0);
    const __m256i offset = _mm256_set1_epi32((r + g + b) * 0x8000);
    const __m256i lessOffset =
        _mm256_xor_si256(colors, _mm256_set1_epi16(static_cast<short>(0x8000)));
    const __m256i pairs = _mm256_madd_epi16(lessOffset, weights);
    return _mm256_add_epi32(_mm256_add_epi32(pairs, _mm256_srli_epi64(pairs, 32)), offset);
}

/// The low words of 32-bit lanes, rounded to 8 bits.
__m256i ToBytes(__m256i words) {
    const __m256i rounded = _mm256_adds_epu16(words, _mm256_set1_epi32(127));
    return _mm256_and_si256(_mm256_srli_epi32(rounded, 8), _mm256_set1_epi32(0xFF));
}

/// The low halves of 64-bit lanes, those of both vectors in one.
__m256i LowHalves(const TwoVectors& lanes) {
    return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(lanes.first),
                                                 _mm256_castsi256_ps(lanes.second),
                                                 _MM_SHUFFLE(2, 0, 2, 0)));
}

TwoVectors Saturations(const TwoVectors& colors) {
    const __m256i largest =
        ToBytes(LowHalves({LargestChannel(colors.first), LargestChannel(colors.second)}));
    const __m256i smallest =
        ToBytes(LowHalves({SmallestChannel(colors.first), SmallestChannel(colors.second)}));
    // Numerator and denominator are exact, and a quotient that is no whole number is too far from
    // the next one for single precision to round up to it.
    const __m256 chroma = _mm256_cvtepi32_ps(_mm256_sub_epi32(largest, smallest));
    const __m256 numerator = _mm256_mul_ps(chroma, _mm256_set1_ps(255.0F));
    const __m256 denominator = _mm256_max_ps(_mm256_cvtepi32_ps(largest), _mm256_set1_ps(1.0F));
    const __m256i quotient = _mm256_cvttps_epi32(_mm256_div_ps(numerator, denominator));
    const __m256i scaled = _mm256_slli_epi32(quotient, 8);
    return {_mm256_unpacklo_epi32(scaled, scaled), _mm256_unpackhi_epi32(scaled, scaled)};
}

template <GrayMode kMode>
__m256i GrayValues(__m256i colors) {
    switch (kMode) {
        case GrayMode::LightnessAverage: {
            const __m256i largest = LargestChannel(colors);
            const __m256i smallest = SmallestChannel(colors);
            const __m256i odd =
                _mm256_and_si256(_mm256_xor_si256(largest, smallest), _mm256_set1_epi16(1));
            return _mm256_sub_epi16(_mm256_avg_epu16(largest, smallest), odd);
        }
        case GrayMode::RgbAverage:
            // 2^33 / 3, rounded up: exact for sums of 32 bits (Granlund and Montgomery, 1994).
            return _mm256_srli_epi64(_mm256_mul_epu32(WeightedChannels(colors, 1, 1, 1),
                                                      _mm256_set1_epi64x(0xAAAA'AAAB)),
                                     33);
        case GrayMode::NtscY:
            return _mm256_srli_epi32(WeightedChannels(colors, 4897, 9611, 1876), 14);
        case GrayMode::Value:
            return _mm256_slli_epi64(ToBytes(LargestChannel(colors)), 8);
        case GrayMode::Red:
            return colors;
        case GrayMode::Green:
            return _mm256_srli_epi64(colors, 16);
        case GrayMode::Blue:
            return _mm256_srli_epi64(colors, 32);
        case GrayMode::Cb:
        case GrayMode::Cr: {
            const __m256i sum = kMode == GrayMode::Cb
                                    ? WeightedChannels(colors, -2765, -5427, 8192)
                                    : WeightedChannels(colors, -6860, -1332, 8192);
            return _mm256_srai_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(kFullScale * 8192)),
                                     14);
        }
        case GrayMode::Saturation:  // which GrayValuesOfTwo makes
        case GrayMode::Black:
            return _mm256_setzero_si256();
    }
}

template <GrayMode kMode>
TwoVectors GrayValuesOfTwo(const TwoVectors& colors) {
    if constexpr (kMode == GrayMode::Saturation) {
        return Saturations(colors);
    } else {
        return {GrayValues<kMode>(colors.first), GrayValues<kMode>(colors.second)};
    }
}

/// The colour channels' words are `value`'s word number `index` in its lane; alpha's are 0:
///
///      value     | w3 | w2 | w1 | w0 |      index 0      |  0 | w0 | w0 | w0 |
///
/// Every byte of the shuffle's control is the number of the byte that goes there, within 128 bits;
/// 0x80 gives 0. Word number i has the bytes 2 * i and 2 * i + 1, for i = 0 a control word of
/// 0x0100, three times over for the colours. The second pixel of 128 bits has its bytes 8 higher.
__m256i SpreadWord(__m256i value, int index) {
    const int word = 0x0100 + index * 0x0202;
    const long long low = word * 0x1'0001'0001LL + static_cast<long long>(0x8080'0000'0000'0000);
    const long long high = low + 0x0808'0808'0808LL;
    return _mm256_shuffle_epi8(value, _mm256_setr_epi64x(low, high, low, high));
}

template <GrayMode kMode>
void GrayRowAvx2(RGBA16* dst, const RGBA16* src, size_t count, uint32_t tint, Store store) {
    // Factors times 256, so that the high half of a product is the product divided by 256. The
    // factors of red, green and blue, the lowest byte of 0x00RRGGBB, go to words 0, 1 and 2.
    const uint64_t factors = uint64_t{tint & 0xFF'0000} >> 8 | uint64_t{tint & 0xFF00} << 16 |
                             uint64_t{tint & 0xFF} << 40;
    const __m256i tints = _mm256_set1_epi64x(static_cast<long long>(factors));
    const auto tinted = [&](__m256i values, __m256i colors) {
        __m256i words = _mm256_mulhi_epu16(SpreadWord(values, 0), tints);
        if constexpr (kMode == GrayMode::Cb || kMode == GrayMode::Cr) {
            // A negative value lacks 65536 in its low word: its tinted word has one whole factor,
            // times 256, too much.
            words = _mm256_sub_epi16(words, _mm256_and_si256(SpreadWord(values, 1), tints));
        }
        return _mm256_or_si256(words, _mm256_and_si256(colors, AlphaLanes()));
    };
    ForEachOverWhite(
        dst, src, count, store,
        [&](RGBA16* to, const RGBA16* from, size_t pixels) {
            kGrayRowsScalar[static_cast<size_t>(kMode)](to, from, pixels, tint, store);
        },
        [&](const TwoVectors& colors) {
            const TwoVectors values = GrayValuesOfTwo<kMode>(colors);
            return TwoVectors{tinted(values.first, colors.first),
                              tinted(values.second, colors.second)};
        });
}

}  // namespace

GrayRows kGrayRowsAvx2 = {
    GrayRowAvx2<GrayMode::LightnessAverage>,
    GrayRowAvx2<GrayMode::RgbAverage>,
    GrayRowAvx2<GrayMode::NtscY>,
    GrayRowAvx2<GrayMode::Value>,
    GrayRowAvx2<GrayMode::Red>,
    GrayRowAvx2<GrayMode::Green>,
    GrayRowAvx2<GrayMode::Blue>,
    GrayRowAvx2<GrayMode::Saturation>,
    GrayRowAvx2<GrayMode::Cb>,
    GrayRowAvx2<GrayMode::Cr>,
    GrayRowAvx2<GrayMode::Black>,
};

}  // namespace imgbasic
