#include "lib/image/color_cells.h"

namespace imgbasic {

ColorCells::ColorCells(const WeightedColors& image)
    : table_(AllocateZeroed(kColorCells * sizeof(uint32_t))) {
    if (table_ == nullptr) {
        return;
    }
    const auto table = Table();
    for (size_t i = 0; i < image.colors.size(); ++i) {
        table[CellOf(VisibleColor(image.colors[i]))] += image.Count(i);
    }
    for (uint32_t cell = 0; cell < kColorCells; ++cell) {
        if (table[cell] != 0) {
            occupied_.push_back({cell, table[cell]});
        }
    }
}

std::span<uint32_t> ColorCells::Table() {
    return {reinterpret_cast<uint32_t*>(table_.get()), table_ == nullptr ? 0 : kColorCells};
}

std::vector<CoarseColor> ColorCells::Coarse(int shift) const {
    std::vector<uint32_t> counts(kCoarseKeys);
    for (const Cell& cell : occupied_) {
        counts[CoarseKey(cell.number, shift)] += cell.count;
    }
    std::vector<CoarseColor> colors;
    for (uint32_t key = 0; key < kCoarseKeys; ++key) {
        if (counts[key] != 0) {
            CoarseColor& color = colors.emplace_back();
            for (size_t channel = 0; channel < kColorChannels; ++channel) {
                color.level[channel] = static_cast<uint8_t>(key >> (4 * channel) & 15);
            }
            color.count = counts[key];
        }
    }
    return colors;
}

}  // namespace imgbasic
