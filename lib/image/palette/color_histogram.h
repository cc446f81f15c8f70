#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/palette/counted_colors.h"
#include "lib/image/palette/median_cut.h"

namespace imgbasic {

/// How many pixels of an image lie in each cell of colour space (see CellOf), of kBits bits a
/// channel. Everything coarser is summed up from here, so that the pixels are counted once; cells
/// that have pixels are few beside all, so that a list of them is what is summed.
class ColorHistogram {
  public:
    static constexpr int kBits = 5;

    struct Cell {
        uint32_t number;  ///< CellOf<kBits>
        uint32_t count;
    };

    /// Without memory, Table() is empty.
    explicit ColorHistogram(const CountedColors& image);

    /// One value for each cell: its pixels, until a user puts something else there.
    std::span<uint32_t> Table();
    /// The cells that have pixels, in ascending order.
    const std::vector<Cell>& Occupied() const { return occupied_; }
    /// The distinct colours when every channel is shifted right by `shift`, kLeastCoarseShift to 6,
    /// ordered by alpha, then red, green and blue.
    std::vector<CoarseColor> Coarse(int shift) const;

  private:
    ZeroedBlock table_;
    std::vector<Cell> occupied_;
};

/// The level of a cell's colours in a channel that is shifted right by `shift`, 3 or more: the
/// cell has lost the lowest bits already, so that the shift is less by as many.
constexpr int ShiftedLevel(uint32_t cell, size_t channel, int shift) {
    return CellLevel<ColorHistogram::kBits>(cell, channel) >> (shift - (8 - ColorHistogram::kBits));
}

/// Coarse colours are cells again, of up to four bits a channel; those of greater shifts leave the
/// upper bits of each channel's four zero, so that one table serves all.
constexpr int kLeastCoarseShift = 4;
constexpr int kCoarseBits = 8 - kLeastCoarseShift;
static_assert(kCoarseBits < ColorHistogram::kBits);

constexpr uint32_t CoarseCell(uint32_t cell, int shift) {
    uint32_t coarse = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        coarse |= static_cast<uint32_t>(ShiftedLevel(cell, channel, shift))
                  << (kCoarseBits * channel);
    }
    return coarse;
}

}  // namespace imgbasic
