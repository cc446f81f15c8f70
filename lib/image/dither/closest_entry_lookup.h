#pragma once

#include <cstdint>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/palette/color_word.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// Some of the entries that can be the nearest to the colours of a cell, in the order in which
/// they are compared. A cell with more than one block has them side by side.
struct CandidateBlock {
    static constexpr uint32_t kSize = 8;

    uint32_t colors[kSize];  ///< pixel words; spare ones as the first
    uint8_t indices[kSize];  ///< of the palette entries
    uint32_t count;          ///< entries, 1 to kSize
    bool more;               ///< whether another block follows
};

/// What a ClosestEntryLookup has found out so far, in the form in which vector code reads it.
struct ClosestEntryTables {
    static constexpr int kBits = 4;  ///< of the cells
    static constexpr uint32_t kUnknown = 0;
    static constexpr uint32_t kSearchPalette = 0xFFFFFFFF;

    const uint32_t* cells;  ///< by CellOf<kBits>: kUnknown, kSearchPalette or the first block
    const CandidateBlock* blocks;
    uint32_t colorMask;  ///< the channels that the squared distance is taken over
    uint32_t colors[CandidateGrid::kMaxEntries];  ///< the palette's, as pixel words
};

/// Answers what FindNearestInGrid, or without a grid FindNearest, would answer for one palette
/// while it lives, but looks at few entries a colour: the first colour of each cell (see CellOf)
/// sorts out which entries no colour of the cell can be nearest to.
class ClosestEntryLookup {
  public:
    /// The palette must be finished, have 1 to 256 entries and stay as it is.
    explicit ClosestEntryLookup(const ReducePalette& palette);
    /// False when memory ran out; then nothing else may be called.
    bool IsReady() const { return cells_ != nullptr && blocks_ != nullptr; }

    /// The index of the entry nearest to a pixel word.
    uint8_t Find(uint32_t color);

    const ClosestEntryTables& Tables() const { return tables_; }

  private:
    uint32_t Prepare(uint32_t number);
    uint32_t AddBlocks(const std::vector<uint8_t>& candidates);
    uint8_t FindInPalette(uint32_t color) const;

    const ReducePalette& palette_;
    bool alphaInDistance_;
    std::vector<uint8_t> allEntries_;  ///< the candidates of every cell of a palette without grid
    std::vector<uint8_t> candidates_;  ///< of the cell that is prepared
    ZeroedBlock cells_;
    ZeroedBlock blocks_;
    uint32_t blockCount_ = 1;  ///< the first is not used: its number means kUnknown
    ClosestEntryTables tables_{};
};

}  // namespace imgbasic
