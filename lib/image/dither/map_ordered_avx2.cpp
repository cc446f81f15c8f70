#include "lib/image/dither/closest_entry_avx2.h"
#include "lib/image/dither/map_forms.h"

namespace imgbasic {
namespace {

/// The bit length of each byte.
__m256i BitWidths(__m256i values) {
    const __m256i ofLow =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4));
    const __m256i ofHigh =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 5, 6, 6, 7, 7, 7, 7, 8, 8, 8, 8, 8, 8, 8, 8));
    const __m256i nibble = _mm256_set1_epi8(15);
    const __m256i high = _mm256_and_si256(_mm256_srli_epi16(values, 4), nibble);
    return _mm256_max_epu8(_mm256_shuffle_epi8(ofHigh, high),
                           _mm256_shuffle_epi8(ofLow, _mm256_and_si256(values, nibble)));
}

__m256i AbsoluteDifference(__m256i a, __m256i b) {
    return _mm256_sub_epi8(_mm256_max_epu8(a, b), _mm256_min_epu8(a, b));
}

/// The bytes of pixels in columns 0 to 3, twice, look their offsets up.
__m256i OffsetsFor(const OrderedOffsets& row, __m256i bits) {
    const auto ofColumn = [&](int column) {
        const auto* offsets = reinterpret_cast<const __m128i*>(row.offsets[column]);
        return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(_mm_load_si128(offsets)), bits);
    };
    const __m256i front = _mm256_blend_epi32(ofColumn(0), ofColumn(1), 0b00100010);
    const __m256i back = _mm256_blend_epi32(ofColumn(2), ofColumn(3), 0b10001000);
    return _mm256_blend_epi32(front, back, 0b11001100);
}

/// Bytes plus signed bytes, clamped. Negative ones are turned round, -128 into 128.
__m256i AddClamped(__m256i bytes, __m256i offsets) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i negative = _mm256_cmpgt_epi8(zero, offsets);
    const __m256i down = _mm256_and_si256(_mm256_sub_epi8(zero, offsets), negative);
    const __m256i up = _mm256_andnot_si256(negative, offsets);
    return _mm256_subs_epu8(_mm256_adds_epu8(bytes, up), down);
}

}  // namespace

void MapOrderedRowAvx2(ClosestEntryLookup& lookup, const uint32_t* colors, uint8_t* indices,
                       size_t width, const RGBA16* ahead, const OrderedOffsets& row) {
    const ClosestEntryTables& tables = lookup.Tables();
    const auto* entries = reinterpret_cast<const int*>(tables.colors);
    // Every eight pixels begin in a column that is a multiple of four.
    ForEachEight(colors, indices, width, ahead, [&](__m256i eight) {
        const __m256i closest =
            _mm256_i32gather_epi32(entries, FindEightAvx2(lookup, tables, eight), 4);
        const __m256i bits = BitWidths(AbsoluteDifference(eight, closest));
        return FindEightAvx2(lookup, tables, AddClamped(eight, OffsetsFor(row, bits)));
    });
}

}  // namespace imgbasic
