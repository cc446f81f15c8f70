#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/dither/cell_candidates.h"
#include "lib/image/palette/color_word.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// The entries that can be the closest to the colours of a cell, in the order in which they are
/// compared, in a form in which vector code ranks them all at once. The rank of an entry e for a
/// colour q, of those that share the block, has the place of its index lowest and above it
///
///      |e - f|^2 - 2 (q - f) . (e - 128)
///
/// where f is the least colour of the cell of the palette's grid (CandidateGrid) that q lies in,
/// so that the channels of q - f are its low five bits. That is |q - e|^2 but for terms that are
/// the same for every entry. The least rank is the closest entry's.
///
/// Where there are more than kSize entries they take several blocks, one after the other. Nothing
/// is ranked then: kUnranked stands in place of the first term, and the weights are zero.
struct alignas(64) CandidateBlock {
    static constexpr size_t kSize = 8;
    static constexpr int kIndexBits = 8;
    static constexpr int32_t kNoEntry = INT32_MAX;
    static constexpr int32_t kUnranked = INT32_MIN;

    uint32_t weights[kSize];  ///< e - 128, a signed byte a channel
    int32_t ranks[kSize];     ///< the first term, and the index; kNoEntry behind the last

    bool IsRanked() const { return ranks[0] >= 0; }
};
static_assert(sizeof(CandidateBlock) == 64, "a line of the caches");
static_assert((int64_t{kColorChannels} * 255 * 255 + 2 * kColorChannels * 31 * 128)
                      << CandidateBlock::kIndexBits <
                  CandidateBlock::kNoEntry,
              "every rank");

/// What a ClosestEntryLookup has found out so far, in the form in which vector code reads it.
struct ClosestEntryTables {
    /// The cells are as small as that: of each colour channel the top kBits bits, of alpha only
    /// those of the palette's grid. So what an opaque picture uses of the table is small.
    static constexpr int kBits = 5;
    static constexpr uint32_t kOpaqueCells = 1U << (3 * kBits);
    static constexpr uint32_t kCells = kOpaqueCells << CandidateGrid::kBits;

    /// Blocks for cells that vector code leaves to ClosestEntryLookup::Find: all ranks are alike.
    static constexpr uint16_t kUnknown = 0;
    static constexpr uint16_t kSearchPalette = 1;
    static constexpr uint16_t kFirstBlock = 2;

    const uint16_t* cells;  ///< by TableCellOf: the number of the block
    const CandidateBlock* blocks;
    uint32_t colorMask;                   ///< the channels that the squared distance is taken over
    uint32_t colors[kMaxPaletteEntries];  ///< the palette's, as pixel words
};

/// The number of a colour's cell. It has internal linkage, since files compiled for one instruction
/// set use it too.
static constexpr uint32_t TableCellOf(uint32_t color) {
    using Tables = ClosestEntryTables;
    return CellOf<Tables::kBits>(color) % Tables::kOpaqueCells +
           (color >> (32 - CandidateGrid::kBits)) * Tables::kOpaqueCells;
}

/// Answers what FindNearestInGrid, or without a grid FindNearest, would answer for one palette
/// while it lives, but looks at few entries a colour: the first colour of a cell sorts out which
/// entries no colour there can be closest to (see DropHopeless). The entries that stay keep their
/// order, so that ties come out as in the search of all.
///
/// The cells are those of the palette's grid where one block is enough for its candidates, else
/// cells of half or a quarter of its breadth; the table is by the smallest.
///
/// With AlphaMode::First only the entries of the closer alpha take part, which is the same for the
/// whole cell: entries are transparent or opaque, and no cell reaches over the middle between 127
/// and 128. There is one exception: in the grid, where alpha is no part of the distance, an entry
/// of the farther alpha ends the search when it is at distance zero and comes before any of the
/// closer alpha. The smallest cells where that can happen are left to the search itself.
class ClosestEntryLookup {
  public:
    /// The palette must be finished, live as long and stay as it is.
    explicit ClosestEntryLookup(const ReducePalette& palette);
    /// False for a palette of no or more than 256 entries, or when memory ran out; then nothing
    /// else may be called.
    bool IsReady() const { return blocks_ != nullptr; }

    /// The index of the entry closest to a pixel word.
    uint8_t Find(uint32_t color);

    /// Defined out of line because files compiled for an instruction set call it.
    const ClosestEntryTables& Tables() const;

  private:
    /// What the cells inside a cell of the palette's grid begin with.
    struct GridCell {
        std::vector<Candidate> candidates;
        /// With AlphaMode::First the colours of the entries that would end a search although their
        /// alpha is the farther.
        std::vector<uint32_t> enders;
    };

    void Prepare(uint32_t color);
    GridCell ListCandidates(uint32_t color) const;
    uint16_t AddBlocks(std::span<const Candidate> candidates, uint32_t color);
    void Fill(const CellRange& cell, uint16_t number);
    uint8_t FindInPalette(uint32_t color) const;
    uint16_t* Cells();

    const ReducePalette& palette_;
    bool alphaInDistance_;
    std::unordered_map<uint32_t, GridCell> gridCells_;  ///< by CellOf<CandidateGrid::kBits>
    ZeroedBlock cells_;
    ZeroedBlock blockMemory_;
    CandidateBlock* blocks_ = nullptr;
    uint32_t blockCount_ = 0;
    ClosestEntryTables tables_{};
};

}  // namespace imgbasic
