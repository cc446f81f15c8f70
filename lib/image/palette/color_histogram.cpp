#include "lib/image/palette/color_histogram.h"

namespace imgbasic {

ColorHistogram::ColorHistogram(const CountedColors& image)
    : table_(AllocateZeroed(kCellCount<kBits> * sizeof(uint32_t))) {
    if (table_ == nullptr) {
        return;
    }
    const auto table = Table();
    for (size_t i = 0; i < image.colors.size(); ++i) {
        table[CellOf<kBits>(VisibleColor(image.colors[i]))] += image.Count(i);
    }
    for (uint32_t cell = 0; cell < kCellCount<kBits>; ++cell) {
        if (table[cell] != 0) {
            occupied_.push_back({cell, table[cell]});
        }
    }
}

std::span<uint32_t> ColorHistogram::Table() {
    return {reinterpret_cast<uint32_t*>(table_.get()), table_ == nullptr ? 0 : kCellCount<kBits>};
}

std::vector<CoarseColor> ColorHistogram::Coarse(int shift) const {
    std::vector<uint32_t> counts(kCellCount<kCoarseBits>);
    for (const Cell& cell : occupied_) {
        counts[CoarseCell(cell.number, shift)] += cell.count;
    }
    std::vector<CoarseColor> colors;
    for (uint32_t cell = 0; cell < counts.size(); ++cell) {
        if (counts[cell] != 0) {
            CoarseColor& color = colors.emplace_back();
            for (size_t channel = 0; channel < kColorChannels; ++channel) {
                color.level[channel] = static_cast<uint8_t>(CellLevel<kCoarseBits>(cell, channel));
            }
            color.count = counts[cell];
        }
    }
    return colors;
}

}  // namespace imgbasic
