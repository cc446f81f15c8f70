#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "lib/base/kv_array.h"
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
constexpr size_t kMaxPaletteEntries = 256;

/// The palette entries by the cell of colour space (see CellOf) that they lie in.
struct CandidateGrid {
    static constexpr int kBits = 3;

    /// The entries in ascending order of their cells, those of one cell in index order.
    std::array<uint8_t, kMaxPaletteEntries> order{};
    /// Where the cells of these entries are: by channel, then as in `order`. Behind the last entry
    /// farther away than any cell.
    std::array<std::array<uint8_t, kMaxPaletteEntries>, kColorChannels> levels;

    explicit CandidateGrid(const KVArray<KVColorPalette>& entries);
};

/// The palette of a colour reduction. After its entries have changed, FinishPalette makes it
/// ready to be searched.
struct ReducePalette {
    KVArray<KVColorPalette> entries;
    AlphaMode alphaMode = AlphaMode::Ignored;
    std::optional<CandidateGrid> grid;  ///< empty where the palette is searched in full

    /// The entries worth comparing with a colour, in the order in which they are compared: those of
    /// its cell, then those of all cells within a radius of 1, or where that leaves it without any,
    /// within the least radius that does not. Only with a grid.
    std::vector<uint8_t> Candidates(uint32_t color) const;
};

/// Settles the alpha mode of a palette of at most kMaxPaletteEntries entries and, from
/// kGridMinEntries entries up, builds its grid.
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
