#include "lib/image/dither/map_to_indexed.h"

#include <algorithm>
#include <new>

#include "lib/image/palette/color_rows.h"

namespace imgbasic {

std::unique_ptr<KVBitmap> MapToIndexed(const ReducePalette& palette, const KVBitmap* bitmap,
                                       int32_t ditherKind) {
    ColorRows rows(bitmap);
    RowMapper mapper(palette, ditherKind, rows.Width());
    if (rows.PixelCount() == 0 || !mapper.IsReady()) {
        return nullptr;
    }
    std::unique_ptr<KVBitmap> indexed(new (std::nothrow) KVBitmap(
        bitmap->Width(), bitmap->Height(), static_cast<uint32_t>(palette.entries.size())));
    if (indexed == nullptr || !indexed->EnsurePixels()) {
        return nullptr;
    }
    std::ranges::transform(palette.entries, indexed->Palette().begin(), &KVColorPalette::Word);
    for (int32_t y = 0; y < rows.Height(); ++y) {
        mapper.MapRow(rows.Row(y), indexed->IndexRow(y), rows.Ahead(y));
    }
    return indexed;
}

}  // namespace imgbasic
