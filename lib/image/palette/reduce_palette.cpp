#include "lib/image/palette/reduce_palette.h"

#include <algorithm>
#include <array>
#include <vector>

#include "lib/image/palette/closest_entry_rule.h"

namespace imgbasic {
namespace {

AlphaMode AlphaModeOf(const KVArray<KVColorPalette>& entries) {
    AlphaMode mode = AlphaMode::Ignored;
    for (const KVColorPalette& entry : entries) {
        if (entry.alpha != 0 && entry.alpha != 255) {
            return AlphaMode::Axis;
        }
        if (entry.alpha == 0) {
            mode = AlphaMode::First;
        }
    }
    return mode;
}

/// The entries of one cell.
struct OccupiedCell {
    uint32_t cell;
    std::vector<uint8_t> entries;
};

/// In ascending order of the cells; entries in index order.
std::vector<OccupiedCell> OccupiedCells(const KVArray<KVColorPalette>& entries) {
    std::vector<OccupiedCell> occupied;
    for (size_t i = 0; i < entries.size(); ++i) {
        const uint32_t cell = CellOf<CandidateGrid::kBits>(entries[i].Word());
        auto place = std::ranges::lower_bound(occupied, cell, {}, &OccupiedCell::cell);
        if (place == occupied.end() || place->cell != cell) {
            place = occupied.insert(place, {cell, {}});
        }
        place->entries.push_back(static_cast<uint8_t>(i));
    }
    return occupied;
}

/// For each occupied cell how far another one is apart from it: the greatest difference of their
/// coordinates.
using CellsApart = std::array<uint8_t, CandidateGrid::kMaxEntries>;

/// A cell's candidates are its own entries, then those of all cells within a radius of 1, or
/// where that leaves it without any, within the least radius that does not.
void FillCell(CandidateGrid& grid, uint32_t cell, const std::vector<OccupiedCell>& occupied,
              const CellsApart& apart) {
    uint8_t* list = grid.lists[cell];
    uint8_t* end = list;
    uint8_t radius = 8;
    for (size_t i = 0; i < occupied.size(); ++i) {
        if (apart[i] == 0) {
            end = std::ranges::copy(occupied[i].entries, end).out;
        }
        radius = std::min(radius, std::max(apart[i], uint8_t{1}));
    }
    for (size_t i = 0; i < occupied.size(); ++i) {
        if (apart[i] != 0 && apart[i] <= radius) {
            end = std::ranges::copy(occupied[i].entries, end).out;
        }
    }
    grid.counts[cell] = static_cast<uint32_t>(end - list);
}

void FillGrid(CandidateGrid& grid, const std::vector<OccupiedCell>& occupied) {
    constexpr int kBits = CandidateGrid::kBits;
    std::array<CellsApart, kColorChannels> coordinates{};
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        for (size_t i = 0; i < occupied.size(); ++i) {
            coordinates[channel][i] =
                static_cast<uint8_t>(CellLevel<kBits>(occupied[i].cell, channel));
        }
    }
    // apart[c] looks at channel c and those above, which change less often from cell to cell.
    std::array<CellsApart, kColorChannels + 1> apart{};
    for (uint32_t cell = 0; cell < kCellCount<kBits>; ++cell) {
        for (size_t channel = kColorChannels; channel-- > 0;) {
            if (cell % (1U << (kBits * channel)) != 0) {
                continue;
            }
            const auto level = static_cast<uint8_t>(CellLevel<kBits>(cell, channel));
            for (size_t i = 0; i < occupied.size(); ++i) {
                const uint8_t other = coordinates[channel][i];
                const auto difference =
                    static_cast<uint8_t>(std::max(level, other) - std::min(level, other));
                apart[channel][i] = std::max(apart[channel + 1][i], difference);
            }
        }
        FillCell(grid, cell, occupied, apart[0]);
    }
}

bool AlphaInFullDistance(const ReducePalette& palette) {
    return palette.alphaMode != AlphaMode::Ignored;
}

}  // namespace

std::span<const uint8_t> ReducePalette::Candidates(uint32_t color) const {
    const uint32_t cell = CellOf<CandidateGrid::kBits>(color);
    return {Grid()->lists[cell], Grid()->counts[cell]};
}

void FinishPalette(ReducePalette& palette) {
    palette.gridBlock.reset();
    palette.alphaMode = AlphaModeOf(palette.entries);
    if (palette.entries.size() < kGridMinEntries ||
        palette.entries.size() > CandidateGrid::kMaxEntries) {
        return;
    }
    palette.gridBlock = AllocateZeroed(sizeof(CandidateGrid));
    if (palette.gridBlock == nullptr) {
        return;
    }
    auto& grid = *reinterpret_cast<CandidateGrid*>(palette.gridBlock.get());
    FillGrid(grid, OccupiedCells(palette.entries));
}

int32_t FindNearest(const ReducePalette& palette, uint32_t color) {
    ClosestEntryRule rule(palette.alphaMode, AlphaInFullDistance(palette), color);
    for (size_t i = 0; i < palette.entries.size(); ++i) {
        if (rule.Compare(palette.entries[i].Word(), static_cast<int32_t>(i))) {
            break;
        }
    }
    return rule.Index();
}

int32_t FindNearestInGrid(const ReducePalette& palette, uint32_t color) {
    if (palette.Grid() == nullptr) {
        return -1;
    }
    ClosestEntryRule rule(palette.alphaMode, palette.alphaMode == AlphaMode::Axis, color);
    for (const uint8_t index : palette.Candidates(color)) {
        if (rule.Compare(palette.entries[index].Word(), index)) {
            break;
        }
    }
    return rule.Index();
}

}  // namespace imgbasic
