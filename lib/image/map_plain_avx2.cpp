#include "lib/image/map_rows.h"
#include "lib/image/nearest_avx2.h"

namespace imgbasic {

void MapPlainRowAvx2(NearestLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                     size_t width) {
    const NearestTables& tables = lookup.Tables();
    const __m256i mask = LaneMask(tables);
    for (size_t x = 0; x < width; ++x) {
        const uint32_t color = VisibleColor(pixels[x]);
        indices[x] = FindNearestAvx2(lookup, tables, color, ChannelLanes(color), mask).index;
    }
}

}  // namespace imgbasic
