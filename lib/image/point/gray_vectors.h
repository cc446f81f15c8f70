#pragma once

#include <immintrin.h>

#include <iterator>
#include <utility>

#include "lib/image/point/gray_forms.h"
#include "lib/image/simd/over_white.h"

namespace imgbasic {
namespace {

// A pixel fills a lane of 64 bits; its grey value is made in the lane's low 32 bits:
//
//      colors    | alpha | blue | green | red |      words 3, 2, 1, 0
//      values    |   ?   |   ?  |   grey      |
//
// What stands in the words marked with ? does not matter: SpreadWord takes words 0 and 1 only.

/// Two channels of eight pixels, each in the low or the high word of its 32-bit lane: red and green
/// of `first`, blue and alpha of `second`.
TwoVectors ChannelPairs(const TwoVectors& colors) {
    const __m256 first = _mm256_castsi256_ps(colors.first);
    const __m256 second = _mm256_castsi256_ps(colors.second);
    return {_mm256_castps_si256(_mm256_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0))),
            _mm256_castps_si256(_mm256_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1)))};
}

/// The low words of 32-bit lanes are the largest channel.
__m256i LargestChannel(const TwoVectors& pairs) {
    return _mm256_max_epu16(_mm256_max_epu16(pairs.first, pairs.second),
                            _mm256_srli_epi32(pairs.first, 16));
}

/// The low words of 32-bit lanes are the smallest channel.
__m256i SmallestChannel(const TwoVectors& pairs) {
    return _mm256_min_epu16(_mm256_min_epu16(pairs.first, pairs.second),
                            _mm256_srli_epi32(pairs.first, 16));
}

/// Values in the order of ChannelPairs, each in the low half of its pixel's lane.
TwoVectors ToPixelLanes(__m256i values) {
    return {_mm256_unpacklo_epi32(values, values), _mm256_unpackhi_epi32(values, values)};
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

/// Rounded to 8 bits, halves down; a channel above kFullScale gives 255.
__m256i ToBytes(__m256i channels) {
    return _mm256_srli_epi16(_mm256_adds_epu16(channels, _mm256_set1_epi16(127)), 8);
}

TwoVectors LightnessAverages(const TwoVectors& colors) {
    const TwoVectors pairs = ChannelPairs(colors);
    const __m256i largest = LargestChannel(pairs);
    const __m256i smallest = SmallestChannel(pairs);
    const __m256i odd = _mm256_and_si256(_mm256_xor_si256(largest, smallest), _mm256_set1_epi16(1));
    return ToPixelLanes(_mm256_sub_epi16(_mm256_avg_epu16(largest, smallest), odd));
}

TwoVectors Values(const TwoVectors& colors) {
    const __m256i largest = ToBytes(LargestChannel(ChannelPairs(colors)));
    return ToPixelLanes(_mm256_slli_epi16(largest, 8));
}

TwoVectors Saturations(const TwoVectors& colors) {
    const TwoVectors pairs = ChannelPairs(colors);
    const __m256i largest = ToBytes(LargestChannel(pairs));
    const __m256i chroma = _mm256_sub_epi16(largest, ToBytes(SmallestChannel(pairs)));
    // The words' products are added in pairs; a factor of 0 takes the high one out.
    const __m256i product = _mm256_madd_epi16(chroma, _mm256_set1_epi32(255));
    const __m256i divisor = _mm256_and_si256(largest, _mm256_set1_epi32(0xFF));
    // Numerator and denominator are exact, and a quotient that is no whole number is too far from
    // the next one for single precision to round up to it.
    const __m256 denominator = _mm256_max_ps(_mm256_cvtepi32_ps(divisor), _mm256_set1_ps(1.0F));
    const __m256i quotient =
        _mm256_cvttps_epi32(_mm256_div_ps(_mm256_cvtepi32_ps(product), denominator));
    return ToPixelLanes(_mm256_slli_epi32(quotient, 8));
}

template <GrayMode kMode>
__m256i GrayValues(__m256i colors) {
    switch (kMode) {
        case GrayMode::RgbAverage:
            // 2^33 / 3, rounded up: exact for sums of 32 bits (Granlund and Montgomery, 1994).
            return _mm256_srli_epi64(_mm256_mul_epu32(WeightedChannels(colors, 1, 1, 1),
                                                      _mm256_set1_epi64x(0xAAAA'AAAB)),
                                     33);
        case GrayMode::NtscY:
            return _mm256_srli_epi32(WeightedChannels(colors, 4897, 9611, 1876), 14);
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
        default:  // Black, and the modes that GrayValuesOfTwo does by pairs of channels
            return _mm256_setzero_si256();
    }
}

template <GrayMode kMode>
TwoVectors GrayValuesOfTwo(const TwoVectors& colors) {
    if constexpr (kMode == GrayMode::LightnessAverage) {
        return LightnessAverages(colors);
    } else if constexpr (kMode == GrayMode::Value) {
        return Values(colors);
    } else if constexpr (kMode == GrayMode::Saturation) {
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

constexpr Colors ColorsOf(GrayMode mode) {
    return mode == GrayMode::Red     ? kRed
           : mode == GrayMode::Green ? kGreen
           : mode == GrayMode::Blue  ? kBlue
                                     : kAllColors;
}

template <typename OverWhite, GrayMode kMode>
void GrayRowInVectors(RGBA16* dst, const RGBA16* src, size_t count, uint32_t tint, Store store) {
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
    ForEachOverWhite<OverWhite, ColorsOf(kMode)>(
        dst, src, count, store,
        [&](RGBA16* to, const RGBA16* from, size_t pixels) {
            kGrayRowsScalar.of[static_cast<size_t>(kMode)](to, from, pixels, tint, store);
        },
        [&](const TwoVectors& colors) {
            const TwoVectors values = GrayValuesOfTwo<kMode>(colors);
            return TwoVectors{tinted(values.first, colors.first),
                              tinted(values.second, colors.second)};
        });
}

/// The row functions with OverWhiteAvx2 or OverWhiteAvx512.
template <typename OverWhite>
constexpr GrayRows GrayRowsInVectors() {
    return []<size_t... kModes>(std::index_sequence<kModes...>) {
        return GrayRows{{GrayRowInVectors<OverWhite, static_cast<GrayMode>(kModes)>...}};
    }
    (std::make_index_sequence<std::size(GrayRows{}.of)>());
}

}  // namespace
}  // namespace imgbasic
