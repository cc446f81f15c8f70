#pragma once

#include <cstdint>
#include <span>

#include "lib/base/kv_array.h"
#include "lib/base/zeroed_block.h"
#include "lib/image/palette/color_word.h"
#include "lib/image/palette/kv_color_palette.h"

namespace imgbasic {

/// What alpha is to the distance between colours.
enum class AlphaMode : int32_t {
    First = -1,   ///< entries are transparent or opaque: the closer alpha wins before any colour
    Ignored = 0,  ///< every entry is opaque
    Axis = 1      ///< some entry is translucent: alpha is a fourth colour channel
};

/// Palettes with fewer entries are searched in full.
constexpr size_t kGridMinEntries = 17;

/// For each cell of colour space (see CellOf) the palette entries worth comparing with its colours.
struct CandidateGrid {
    static constexpr int kBits = 3;
    static constexpr size_t kMaxEntries = 256;

    uint8_t lists[kCellCount<kBits>][kMaxEntries];
    uint32_t counts[kCellCount<kBits>];
};

/// The palette of a colour reduction. After its entries have changed, FinishPalette makes it
/// ready to be searched.
struct ReducePalette {
    KVArray<KVColorPalette> entries;
    AlphaMode alphaMode = AlphaMode::Ignored;
    ZeroedBlock gridBlock;  ///< a CandidateGrid; null where the palette is searched in full

    const CandidateGrid* Grid() const {
        return reinterpret_cast<const CandidateGrid*>(gridBlock.get());
    }
    /// The candidates for a colour, in the order in which they are compared.
    std::span<const uint8_t> Candidates(uint32_t color) const;
};

/// Settles the alpha mode of a palette of at most 256 entries and, from kGridMinEntries entries
/// up, builds its grid. Without memory for the grid the palette is searched in full.
void FinishPalette(ReducePalette& palette);

/// The index of the entry nearest to a colour (a pixel word), by comparing all of them. The
/// nearest has the least squared distance; of equals, the least sum of absolute channel
/// differences; of equals in that too, the lowest index. -1 for an empty palette.
int32_t FindNearest(const ReducePalette& palette, uint32_t color);

/// The same among the candidates of the colour's cell only, compared in their order, which need
/// not give the nearest of all. For AlphaMode::First, alpha is no part of the distance here, and
/// an entry at distance zero that comes before any of closer alpha ends the search.
/// -1 without a grid.
int32_t FindNearestInGrid(const ReducePalette& palette, uint32_t color);

}  // namespace imgbasic
