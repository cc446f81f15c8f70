#pragma once

#include <cstdint>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/color_word.h"
#include "lib/image/nearest_rule.h"
#include "lib/image/reduce_palette.h"

namespace imgbasic {

/// Answers what FindNearestInGrid, or without a grid FindNearest, would answer for one palette
/// while it lives, but looks at few entries a colour: the first colour of each cell (see CellOf)
/// sorts out which entries no colour of the cell can be nearest to.
class NearestLookup {
  public:
    /// The palette must be finished, have 1 to 256 entries and stay as it is.
    explicit NearestLookup(const ReducePalette& palette);
    /// False when memory ran out; then Find must not be called.
    bool IsReady() const { return cells_ != nullptr; }

    /// The index of the nearest entry.
    uint8_t Find(uint32_t color) {
        const uint32_t number = CellOf(color);
        uint32_t cell = Cells()[number];
        if (cell == kUnknown) {
            cell = Prepare(number);
        }
        if ((cell & kSingle) != 0) {
            return static_cast<uint8_t>(cell);
        }
        return cell == kUnknown ? FindInPalette(color) : FindInList(&pool_[cell], color);
    }

    /// The colour of the palette's entry as a pixel word.
    uint32_t ColorAt(uint8_t index) const { return palette_.entries[index].Word(); }

  private:
    /// An entry that is the nearest to some colours of a cell, perhaps.
    struct Candidate {
        uint32_t color;
        uint16_t index;
        bool last;  ///< of the cell
    };

    // A cell is unknown, has a single candidate (its index in the low bits), or is the place of
    // its first candidate in the pool.
    static constexpr uint32_t kUnknown = 0;
    static constexpr uint32_t kSingle = 1U << 31;
    /// When the pool is full, further cells stay unknown.
    static constexpr size_t kPoolSize = size_t{1} << 20;

    uint32_t* Cells() { return reinterpret_cast<uint32_t*>(cells_.get()); }
    uint32_t Prepare(uint32_t number);
    uint8_t FindInPalette(uint32_t color) const;
    uint8_t FindInList(const Candidate* candidate, uint32_t color) const {
        NearestRule nearest(palette_.alphaMode, alphaInDistance_, color);
        while (!nearest.Compare(candidate->color, candidate->index) && !candidate->last) {
            ++candidate;
        }
        return static_cast<uint8_t>(nearest.Index());
    }

    const ReducePalette& palette_;
    bool alphaInDistance_;
    std::vector<uint8_t> allEntries_;  ///< the candidates of every cell of a palette without grid
    ZeroedBlock cells_;
    std::vector<Candidate> pool_;
};

}  // namespace imgbasic
