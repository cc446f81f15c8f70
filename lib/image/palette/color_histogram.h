#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/palette/color_histogram_forms.h"
#include "lib/image/palette/median_cut.h"

namespace imgbasic {

/// How many pixels of an image lie in each cell of colour space (see CellOf), of kBits bits a
/// channel, and the sums of their colours. Everything coarser is summed up from here, so that the
/// pixels are looked at once.
class ColorHistogram {
  public:
    static constexpr int kBits = kTallyCellBits;

    /// Pixels of a cell; a cell of many pixels has several parts.
    struct Part {
        uint32_t cell;  ///< CellOf<kBits>
        uint32_t count;
        std::array<uint32_t, kColorChannels> rests;  ///< sums above the cell's least levels

        /// The sum of a channel.
        uint64_t Total(size_t channel) const {
            const auto least = static_cast<uint64_t>(CellLevel<kBits>(cell, channel))
                               << (8 - kBits);
            return least * count + rests[channel];
        }
    };

    ColorHistogram();
    /// False when memory ran out; then nothing else may be called.
    bool IsReady() const { return tallies_ != nullptr; }

    /// Counts one pixel of each of these visible colours. `ahead` is what the caller will read
    /// next, as many host pixels or null.
    void Add(std::span<const uint32_t> colors, const RGBA16* ahead);
    /// Counts `count` pixels of one colour.
    void Add(uint32_t color, uint32_t count);
    /// Everything counted so far, in no order; nothing may be added afterwards.
    const std::vector<Part>& Finish();

  private:
    void AddToFullOrNew(uint32_t cell);

    ZeroedBlock tallies_;
    std::vector<uint32_t> occupied_;  ///< the cells that have a tally
    std::vector<Part> parts_;
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

/// The distinct colours when every channel is shifted right by `shift`, kLeastCoarseShift to 6,
/// ordered by alpha, then red, green and blue.
std::vector<CoarseColor> CoarseColors(const std::vector<ColorHistogram::Part>& parts, int shift);

}  // namespace imgbasic
