#include "lib/image/dither/closest_entry_avx2.h"
#include "lib/image/dither/map_forms.h"

namespace imgbasic {
namespace {

__m128i LoadError(const ColorError& error) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&error));
}

/// Sixteenths, rounded down.
__m128i Share(__m128i error, short weight) {
    return _mm_srai_epi16(_mm_mullo_epi16(error, _mm_set1_epi16(weight)), 4);
}

}  // namespace

void MapDiffusedRowAvx2(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                        size_t width, ptrdiff_t step, ErrorRows errors, bool accumulate) {
    const ClosestEntryTables& tables = lookup.Tables();
    const __m256i mask = LaneMask(tables);
    const __m128i keepColor = _mm_set1_epi16(accumulate ? 0 : -1);
    const ColorError* above = errors.above;
    __m128i previous = _mm_setzero_si128();
    ptrdiff_t x = step > 0 ? 0 : static_cast<ptrdiff_t>(width) - 1;
    for (size_t i = 0; i < width; ++i, x += step) {
        const __m128i color = ChannelLanes(VisibleColor(pixels[x]));
        __m128i sum = _mm_add_epi16(color, Share(LoadError(above[x - step]), 3));
        sum = _mm_add_epi16(sum, Share(LoadError(above[x]), 5));
        sum = _mm_add_epi16(sum, Share(LoadError(above[x + step]), 1));
        sum = _mm_add_epi16(sum, Share(previous, 7));
        const __m128i packed = _mm_packus_epi16(sum, sum);
        const __m128i lanes = ChannelLanes(packed);
        const auto wanted = static_cast<uint32_t>(_mm_cvtsi128_si32(packed));
        const ClosestEntry closest = FindClosestAvx2(lookup, tables, wanted, lanes, mask);
        indices[x] = closest.index;
        previous = _mm_sub_epi16(_mm_blendv_epi8(lanes, color, keepColor), closest.lanes);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(errors.current + x), previous);
    }
}

}  // namespace imgbasic
