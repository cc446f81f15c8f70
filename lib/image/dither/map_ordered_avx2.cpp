#include "lib/image/dither/closest_entry_avx2.h"
#include "lib/image/dither/map_forms.h"

namespace imgbasic {
namespace {

/// The bit length of each byte.
__m128i BitWidths(__m128i values) {
    const __m128i ofLow = _mm_setr_epi8(0, 1, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4);
    const __m128i ofHigh = _mm_setr_epi8(0, 5, 6, 6, 7, 7, 7, 7, 8, 8, 8, 8, 8, 8, 8, 8);
    const __m128i nibble = _mm_set1_epi8(15);
    const __m128i high = _mm_and_si128(_mm_srli_epi16(values, 4), nibble);
    return _mm_max_epu8(_mm_shuffle_epi8(ofHigh, high),
                        _mm_shuffle_epi8(ofLow, _mm_and_si128(values, nibble)));
}

}  // namespace

void MapOrderedRowAvx2(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                       size_t width, const OrderedOffsets& row) {
    const ClosestEntryTables& tables = lookup.Tables();
    const __m256i mask = LaneMask(tables);
    for (size_t x = 0; x < width; ++x) {
        const uint32_t color = VisibleColor(pixels[x]);
        const __m128i lanes = ChannelLanes(color);
        ClosestEntry closest = FindClosestAvx2(lookup, tables, color, lanes, mask);
        // The high bytes of the 16-bit lanes stay zero, and so does what they look up.
        const __m128i bits = BitWidths(_mm_abs_epi16(_mm_sub_epi16(lanes, closest.lanes)));
        const __m128i offsets = _mm_shuffle_epi8(
            _mm_load_si128(reinterpret_cast<const __m128i*>(row.offsets[x % 4])), bits);
        const __m128i signedOffsets = _mm_srai_epi16(_mm_slli_epi16(offsets, 8), 8);
        const __m128i moved = _mm_add_epi16(lanes, signedOffsets);
        const __m128i packed = _mm_packus_epi16(moved, moved);
        const auto dithered = static_cast<uint32_t>(_mm_cvtsi128_si32(packed));
        if (dithered != color) {
            closest = FindClosestAvx2(lookup, tables, dithered, ChannelLanes(packed), mask);
        }
        indices[x] = closest.index;
    }
}

}  // namespace imgbasic
