#include "lib/image/dither/closest_entry_avx2.h"
#include "lib/image/dither/map_forms.h"

namespace imgbasic {

void MapPlainRowAvx2(ClosestEntryLookup& lookup, const uint32_t* colors, uint8_t* indices,
                     size_t width, const RGBA16* ahead) {
    const ClosestEntryTables& tables = lookup.Tables();
    ForEachEight(colors, indices, width, ahead,
                 [&](__m256i eight) { return FindEightAvx2(lookup, tables, eight); });
}

}  // namespace imgbasic
