#include "lib/image/reduce/quantize_graduated.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "lib/image/dither/row_mapper.h"
#include "lib/image/palette/quantize_palette.h"

namespace imgbasic {
namespace {

/// The palette's entries that an image is mapped to, in order of first appearance, and their pixel
/// counts; nothing when memory runs out.
std::optional<KVArray<KVColorPalette>> UsedEntries(const ReducePalette& palette, ColorRows& rows) {
    RowMapper mapper(palette, NoDither, rows.Width());
    if (!mapper.IsReady()) {
        return std::nullopt;
    }
    std::array<uint32_t, kMaxPaletteEntries> countOf{};
    std::vector<uint8_t> order;
    std::vector<uint8_t> indices(rows.Width());
    for (int32_t y = 0; y < rows.Height(); ++y) {
        mapper.MapRow(rows.Row(y), indices, rows.Ahead(y));
        for (const uint8_t index : indices) {
            if (countOf[index]++ == 0) {
                order.push_back(index);
            }
        }
    }
    KVArray<KVColorPalette> used;
    for (const uint8_t index : order) {
        used.emplace_back(palette.entries[index].Word(), countOf[index]);
    }
    return used;
}

}  // namespace

bool QuantizeGraduated(ReducePalette& palette, ColorRows& rows, int32_t target) {
    if (!QuantizeRows(palette, rows, -256)) {
        return false;
    }
    const auto limit = static_cast<size_t>(std::max(target, 1));
    while (palette.entries.size() > limit) {
        const auto used = UsedEntries(palette, rows);
        const size_t half = std::max(palette.entries.size() / 2, limit);
        if (!used || !QuantizeCounted(palette, *used, -static_cast<int32_t>(half))) {
            return false;
        }
    }
    return true;
}

bool QuantizeGraduated(ReducePalette& palette, const KVBitmap* bitmap, int32_t target) {
    ColorRows rows(bitmap);
    return bitmap != nullptr && bitmap->identifier < 0 && QuantizeGraduated(palette, rows, target);
}

}  // namespace imgbasic
