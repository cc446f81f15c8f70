#include "lib/image/map_kinds.h"

namespace imgbasic {

void MapPlain(NearestLookup& lookup, const KVBitmap& source, KVBitmap& indexed) {
    const uint32_t* pixel = source.Words().data();
    for (int32_t y = 0; y < source.Height(); ++y) {
        for (uint8_t& index : indexed.IndexRow(y)) {
            index = lookup.Find(VisibleColor(*pixel++));
        }
    }
}

}  // namespace imgbasic
