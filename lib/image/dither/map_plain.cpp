#include "lib/image/dither/dither_kinds.h"
#include "lib/image/dither/map_forms.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {

void MapPlainRowScalar(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                       size_t width) {
    for (size_t x = 0; x < width; ++x) {
        indices[x] = lookup.Find(VisibleColor(pixels[x]));
    }
}

void MapPlain(ClosestEntryLookup& lookup, const KVBitmap& source, KVBitmap& indexed) {
    static constexpr KernelForms<MapPlainForm> kForms{MapPlainRowScalar,
                                                      IMGBASIC_X86_FORM(MapPlainRowAvx2)};
    const uint32_t* pixels = source.Words().data();
    for (int32_t y = 0; y < source.Height(); ++y) {
        const auto row = indexed.IndexRow(y);
        kForms.Active()(lookup, pixels, row.data(), row.size());
        pixels += row.size();
    }
}

}  // namespace imgbasic
