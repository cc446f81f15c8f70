#include <immintrin.h>

#include "lib/image/palette/color_histogram_forms.h"
#include "lib/image/simd/fetch_ahead.h"

namespace imgbasic {
namespace {

/// CellOf<kTallyCellBits> of eight colours.
__m256i CellsOf(__m256i colors) {
    const auto channel = [&](int shift, int position) {
        return _mm256_and_si256(_mm256_srli_epi32(colors, shift),
                                _mm256_set1_epi32(0x1F << position));
    };
    return _mm256_or_si256(_mm256_or_si256(channel(3, 0), channel(6, 5)),
                           _mm256_or_si256(channel(9, 10), channel(12, 15)));
}

/// The tallies of four colours: channels in words, which madd brings to their places in pairs.
__m256i TalliesOf(__m128i colors) {
    static_assert(kTallyShift[0] == 1 && kTallyShift[1] == 12 && kTallyShift[2] == 32 &&
                  kTallyShift[3] == 32 + 11);
    const __m128i rests = _mm_and_si128(colors, _mm_set1_epi8(kRestMask));
    const __m256i places = _mm256_set1_epi64x(1LL << 1 | 1LL << (16 + 12) |  //
                                              1LL << 32 | 1LL << (48 + 11));
    return _mm256_add_epi64(_mm256_madd_epi16(_mm256_cvtepu8_epi16(rests), places),
                            _mm256_set1_epi64x(static_cast<long long>(kOnePixel)));
}

}  // namespace

void TallyAvx2(const uint32_t* colors, size_t count, const RGBA16* ahead, uint32_t* cells,
               uint64_t* tallies) {
    constexpr size_t kStep = 8;
    size_t i = 0;
    for (; i + kStep <= count; i += kStep) {
        const __m256i some = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(colors + i));
        FetchAhead(ahead, i);
        auto* to = reinterpret_cast<__m256i*>(tallies + i);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(cells + i), CellsOf(some));
        _mm256_storeu_si256(to, TalliesOf(_mm256_castsi256_si128(some)));
        _mm256_storeu_si256(to + 1, TalliesOf(_mm256_extracti128_si256(some, 1)));
    }
    TallyScalar(colors + i, count - i, nullptr, cells + i, tallies + i);
}

}  // namespace imgbasic
