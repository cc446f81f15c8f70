#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/color_boxes.h"
#include "lib/image/weighted_colors.h"

namespace imgbasic {

/// How many pixels of an image lie in each cell of colour space. Everything coarser is summed up
/// from here, so that the pixels are counted once.
class ColorCells {
  public:
    struct Cell {
        uint32_t number;  ///< see CellOf
        uint32_t count;
    };

    /// Without memory, Table() is empty.
    explicit ColorCells(const WeightedColors& image);

    /// One value for each of the kColorCells cells: pixels, until a user puts something else
    /// there.
    std::span<uint32_t> Table();
    /// The cells that have pixels.
    const std::vector<Cell>& Occupied() const { return occupied_; }
    /// The distinct colours when every channel is shifted right by `shift`, 4 to 6.
    std::vector<CoarseColor> Coarse(int shift) const;

  private:
    ZeroedBlock table_;
    std::vector<Cell> occupied_;
};

/// The level of a cell's colours in a channel that is shifted right by `shift`, at least
/// kCellShift.
constexpr int CellLevel(uint32_t cell, size_t channel, int shift) {
    return CellFloor(cell, channel) >> shift;
}

/// The number of a cell's colours shifted by `shift`, 4 to 6: four bits a channel.
constexpr uint32_t CoarseKey(uint32_t cell, int shift) {
    uint32_t key = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        key |= static_cast<uint32_t>(CellLevel(cell, channel, shift)) << (4 * channel);
    }
    return key;
}
constexpr size_t kCoarseKeys = size_t{1} << 16;

}  // namespace imgbasic
