#pragma once

#include <cstdint>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/palette/color_word.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// Some of the entries that can be the closest to the colours of a cell, in the order in which
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
    /// Of the cells: each lies inside one cell of the palette's grid, whose candidates are all that
    /// its own are chosen from, and on one side of the middle of alpha (see Reach).
    static constexpr int kBits = 4;
    static_assert(kBits >= CandidateGrid::kBits && kBits >= 1);
    static constexpr uint32_t kUnknown = 0;
    static constexpr uint32_t kSearchPalette = 0xFFFFFFFF;

    const uint32_t* cells;  ///< by CellOf<kBits>: kUnknown, kSearchPalette or the first block
    const CandidateBlock* blocks;
    uint32_t colorMask;  ///< the channels that the squared distance is taken over
    uint32_t colors[CandidateGrid::kMaxEntries];  ///< the palette's, as pixel words
};

/// Answers what FindNearestInGrid, or without a grid FindNearest, would answer for one palette
/// while it lives, but looks at few entries a colour: the first colour of each cell (see CellOf)
/// sorts out which entries no colour of the cell can be closest to.
///
/// Why the rest suffices. For an entry e let least(e) and greatest(e) be its squared distances from
/// the nearest and from the farthest colour of the cell, and let `bound` be the least of all
/// greatest(e), that of the entry b:
///
///      distance   0 ------ least(b) ===================== greatest(b) = bound
///                              least(e) ================== | ============== greatest(e)   stays
///                                                   least(f) = bound ====== greatest(f)   stays
///                                                          | least(g) ===== greatest(g)   goes
///
/// Whatever colour of the cell is asked for, b is at most `bound` away, and so is the closest
/// entry. An entry whose least distance is greater is farther than that from every colour: it is
/// never the closest, never as close as it, and never at distance zero, which ends a search. An
/// entry at exactly `bound` from a corner of the cell can tie there with b and win by the sum of
/// its differences or by its place; it stays. The entries that stay keep their order, so that ties
/// come out as in the search of all.
///
/// With AlphaMode::First only the entries of the closer alpha take part, which is the same for the
/// whole cell. There is one exception to that: in the grid, where alpha is no part of the distance,
/// an entry of the farther alpha ends the search when it is at distance zero and comes before any
/// of the closer alpha. Cells where that can happen are left to the search itself.
class ClosestEntryLookup {
  public:
    /// The palette must be finished, have 1 to 256 entries and stay as it is.
    explicit ClosestEntryLookup(const ReducePalette& palette);
    /// False when memory ran out; then nothing else may be called.
    bool IsReady() const { return cells_ != nullptr && blocks_ != nullptr; }

    /// The index of the entry closest to a pixel word.
    uint8_t Find(uint32_t color);

    /// Defined out of line because files compiled for an instruction set call it.
    const ClosestEntryTables& Tables() const;

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
    uint32_t blockCount_ = ClosestEntryTables::kUnknown + 1;  ///< that block's number is taken
    ClosestEntryTables tables_{};
};

}  // namespace imgbasic
