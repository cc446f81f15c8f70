#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "lib/image/dither/cell_candidates.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// The entries that can be the closest to the colours of a region, for vector code that ranks them
/// all at once. With its place lowest the rank of an entry e for a colour q is
///
///      |e|^2 - 2 q . e
///
/// which is |q - e|^2 but for a term that all entries share. The least rank is the closest
/// entry's; where two are alike but for the places, the block does not tell.
struct alignas(32) RegionBlock {
    static constexpr size_t kSize = 16;
    static constexpr int kPlaceBits = 4;
    static constexpr int32_t kNoEntry = INT32_MAX;

    int16_t blueGreen[kSize][2];  ///< what the channels of a colour are multiplied with
    int16_t redAlpha[kSize][2];
    int32_t ranks[kSize];  ///< the first term, and the place; kNoEntry behind the last
    uint32_t colors[kSize];
    uint8_t indices[kSize];
    uint32_t least;  ///< the region: a colour, and how far the channels may be above it
    uint32_t room;
};
static_assert((255 * 2) << RegionBlock::kPlaceBits <= INT16_MAX, "factors");
static_assert((int64_t{2} * kColorChannels * 255 * 255) << RegionBlock::kPlaceBits <
                  RegionBlock::kNoEntry,
              "ranks");

/// Where to look for the entry closest to a colour that is only roughly known: error diffusion has
/// most of a pixel's colour long before the last share, that of the pixel in front of it. A guess
/// chooses a cell of colour space, and with it a region that reaches beyond the cell on all sides.
///
/// A region's block has what DropHopeless leaves of the palette. In a palette with a grid the
/// region may lie in several of its cells, whose candidates differ; there every entry of the block
/// must, in each of these cells, be a candidate or be driven out by one that is. So the closest
/// entry of the block is a candidate wherever the colour turns out to be, and the search that the
/// grid is for finds it. Where that cannot be shown, or entries are too many, a smaller region is
/// tried; in the end there may be none, and for AlphaMode::First there never is. A palette without
/// a grid that fits into one block has a single region.
class RegionLookup {
  public:
    // Files compiled for an instruction set use this class: everything is defined out of line.
    /// Making a block takes as long as some hundred look-ups without one.
    static constexpr uint16_t kMostAsked = 64;
    /// The palette must be finished, have 1 to kMaxPaletteEntries entries, live as long and stay as
    /// it is.
    explicit RegionLookup(const ReducePalette& palette);

    /// The number of a guess's cell: the top four bits of each colour channel, and of alpha the top
    /// three.
    static uint32_t CellOfGuess(uint32_t guess);
    /// For each cell how often it has been asked for, or from kMostAsked on what Ask answers.
    const uint16_t* Numbers() const;
    /// Counts a guess whose cell has not been asked for that often, and makes the block of one
    /// that has. Answers kMostAsked and the block's number.
    uint16_t Ask(uint32_t guess);
    /// The blocks by number, until a further one is made. The first is for cells that have none:
    /// one great tie.
    const RegionBlock* Blocks() const;

  private:
    std::optional<RegionBlock> MakeBlock(uint32_t guess) const;
    Candidate CandidateOf(size_t index) const;
    std::vector<Candidate> ListCandidates(const CellRange& region) const;
    bool FitsGrid(std::span<const Candidate> candidates, const CellRange& region) const;
    RegionBlock BlockOf(std::span<const Candidate> candidates, const CellRange& region) const;

    const ReducePalette& palette_;
    std::vector<uint16_t> numbers_;
    std::vector<RegionBlock> blocks_;
};

}  // namespace imgbasic
