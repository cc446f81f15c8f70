#include <immintrin.h>

#include "lib/image/palette/color_rows_forms.h"

namespace imgbasic {
namespace {

/// The channels of four pixels, (v + 127) >> 8 each, in words: the average rounds (v + 126) / 2 up
/// without losing the carry.
__m256i ScaledChannels(const RGBA16* pixels) {
    const __m256i channels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    return _mm256_srli_epi16(_mm256_avg_epu16(channels, _mm256_set1_epi16(126)), 7);
}

}  // namespace

void VisibleColorsAvx2(uint32_t* colors, const RGBA16* pixels, size_t count) {
    constexpr size_t kStep = 8;
    const __m256i swapRedAndBlue =
        _mm256_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15,  //
                         2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15);
    size_t i = 0;
    for (; i + kStep <= count; i += kStep) {
        const __m256i first = ScaledChannels(pixels + i);
        const __m256i second = ScaledChannels(pixels + i + 4);
        // A channel of 256 carries; such pixels are rare.
        if (_mm256_testz_si256(_mm256_or_si256(first, second), _mm256_set1_epi16(0x100)) == 0) {
            VisibleColorsScalar(colors + i, pixels + i, kStep);
            continue;
        }
        // Packing works within 128 bits: pixels 0 1 4 5 | 2 3 6 7.
        const __m256i packed =
            _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), _MM_SHUFFLE(3, 1, 2, 0));
        const __m256i words = _mm256_shuffle_epi8(packed, swapRedAndBlue);
        const __m256i hidden =
            _mm256_cmpeq_epi32(_mm256_srli_epi32(words, 24), _mm256_setzero_si256());
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(colors + i),
                            _mm256_andnot_si256(hidden, words));
    }
    VisibleColorsScalar(colors + i, pixels + i, count - i);
}

}  // namespace imgbasic
