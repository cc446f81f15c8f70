#include "lib/image/dither/closest_entry_avx2.h"
#include "lib/image/dither/map_forms.h"

namespace imgbasic {

void MapPlainRowAvx2(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                     size_t width) {
    const ClosestEntryTables& tables = lookup.Tables();
    const __m256i mask = LaneMask(tables);
    for (size_t x = 0; x < width; ++x) {
        const uint32_t color = VisibleColor(pixels[x]);
        indices[x] = FindClosestAvx2(lookup, tables, color, ChannelLanes(color), mask).index;
    }
}

}  // namespace imgbasic
