#include "lib/image/dither/map_to_indexed.h"

#include <new>

#include "lib/image/dither/dither_kinds.h"

namespace imgbasic {

std::unique_ptr<KVBitmap> MapToIndexed(const ReducePalette& palette, const KVBitmap* bitmap,
                                       int32_t ditherKind) {
    const size_t count = palette.entries.size();
    if (bitmap == nullptr || bitmap->Words().empty() || count < 1 || count > kPaletteSlots) {
        return nullptr;
    }
    std::unique_ptr<KVBitmap> indexed(new (std::nothrow) KVBitmap(bitmap->Width(), bitmap->Height(),
                                                                  static_cast<uint32_t>(count)));
    ClosestEntryLookup lookup(palette);
    if (indexed == nullptr || !indexed->EnsurePixels() || !lookup.IsReady()) {
        return nullptr;
    }
    for (size_t i = 0; i < count; ++i) {
        indexed->Palette()[i] = palette.entries[i].Word();
    }
    bool mapped = true;
    switch (ditherKind) {
        case NoDither:
            MapPlain(lookup, *bitmap, *indexed);
            break;
        case OrderedDither:
            MapOrdered(lookup, *bitmap, *indexed);
            break;
        case SmallDiffusion:
        case LargeDiffusion:
            mapped = MapDiffused(lookup, *bitmap, *indexed, ditherKind == LargeDiffusion);
            break;
        default:
            mapped = false;
    }
    return mapped ? std::move(indexed) : nullptr;
}

}  // namespace imgbasic
