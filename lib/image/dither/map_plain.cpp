#include "lib/image/dither/map_forms.h"

namespace imgbasic {

void MapPlainRowScalar(ClosestEntryLookup& lookup, const uint32_t* colors, uint8_t* indices,
                       size_t width, const RGBA16* /*ahead*/) {
    for (size_t x = 0; x < width; ++x) {
        indices[x] = lookup.Find(colors[x]);
    }
}

}  // namespace imgbasic
