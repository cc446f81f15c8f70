#include "lib/image/reduce/quantize_graduated.h"

#include <algorithm>
#include <array>
#include <vector>

#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"

namespace imgbasic {
namespace {

/// The colours of an indexed bitmap in order of first appearance.
struct UsedColors {
    std::vector<uint32_t> colors;
    std::vector<uint32_t> counts;

    explicit UsedColors(const KVBitmap& indexed) {
        std::array<uint32_t, kPaletteSlots> countOf{};
        std::vector<uint8_t> order;
        for (int32_t y = 0; y < indexed.Height(); ++y) {
            for (const uint8_t index : indexed.IndexRow(y)) {
                if (countOf[index]++ == 0) {
                    order.push_back(index);
                }
            }
        }
        for (const uint8_t index : order) {
            colors.push_back(indexed.Palette()[index]);
            counts.push_back(countOf[index]);
        }
    }
};

}  // namespace

bool QuantizeGraduated(ReducePalette& palette, const KVBitmap* bitmap, int32_t target) {
    if (bitmap == nullptr || bitmap->identifier >= 0 || !QuantizePalette(palette, bitmap, -256)) {
        return false;
    }
    const auto limit = static_cast<size_t>(std::max(target, 1));
    while (palette.entries.size() > limit) {
        const auto indexed = MapToIndexed(palette, bitmap, NoDither);
        if (indexed == nullptr) {
            return false;
        }
        const UsedColors used(*indexed);
        const size_t half = std::max(palette.entries.size() / 2, limit);
        if (!QuantizeColors(palette, {used.colors, used.counts.data()},
                            -static_cast<int32_t>(half))) {
            return false;
        }
    }
    return true;
}

}  // namespace imgbasic
