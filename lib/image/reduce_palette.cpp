#include "lib/image/reduce_palette.h"

#include <algorithm>
#include <vector>

#include "lib/image/nearest_rule.h"

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
        const uint32_t cell = CandidateGrid::CellOf(entries[i].Word());
        auto place = std::ranges::lower_bound(occupied, cell, {}, &OccupiedCell::cell);
        if (place == occupied.end() || place->cell != cell) {
            place = occupied.insert(place, {cell, {}});
        }
        place->entries.push_back(static_cast<uint8_t>(i));
    }
    return occupied;
}

/// The greatest difference of the cells' coordinates.
int CellsApart(uint32_t a, uint32_t b) {
    int apart = 0;
    for (int shift = 0; shift < 12; shift += 3) {
        apart = std::max(
            apart, std::abs(static_cast<int>(a >> shift & 7) - static_cast<int>(b >> shift & 7)));
    }
    return apart;
}

/// A cell's candidates are its own entries, then those of all cells within a radius of 1, or
/// where that leaves it without any, within the least radius that does not.
void FillCell(CandidateGrid& grid, uint32_t cell, const std::vector<OccupiedCell>& occupied) {
    uint8_t* list = grid.lists[cell];
    uint8_t* end = list;
    int radius = 8;
    for (const OccupiedCell& other : occupied) {
        if (other.cell == cell) {
            end = std::ranges::copy(other.entries, end).out;
            radius = 1;
        } else {
            radius = std::min(radius, CellsApart(cell, other.cell));
        }
    }
    for (const OccupiedCell& other : occupied) {
        if (other.cell != cell && CellsApart(cell, other.cell) <= radius) {
            end = std::ranges::copy(other.entries, end).out;
        }
    }
    grid.counts[cell] = static_cast<uint32_t>(end - list);
}

bool AlphaInFullDistance(const ReducePalette& palette) {
    return palette.alphaMode != AlphaMode::Ignored;
}

}  // namespace

std::span<const uint8_t> ReducePalette::Candidates(uint32_t color) const {
    const uint32_t cell = CandidateGrid::CellOf(color);
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
    const auto occupied = OccupiedCells(palette.entries);
    for (uint32_t cell = 0; cell < CandidateGrid::kCells; ++cell) {
        FillCell(grid, cell, occupied);
    }
}

int32_t FindNearest(const ReducePalette& palette, uint32_t color) {
    NearestRule nearest(palette.alphaMode, AlphaInFullDistance(palette), color);
    for (size_t i = 0; i < palette.entries.size(); ++i) {
        if (nearest.Compare(palette.entries[i].Word(), static_cast<int32_t>(i))) {
            break;
        }
    }
    return nearest.Index();
}

int32_t FindNearestInGrid(const ReducePalette& palette, uint32_t color) {
    if (palette.Grid() == nullptr) {
        return -1;
    }
    NearestRule nearest(palette.alphaMode, palette.alphaMode == AlphaMode::Axis, color);
    for (const uint8_t index : palette.Candidates(color)) {
        if (nearest.Compare(palette.entries[index].Word(), index)) {
            break;
        }
    }
    return nearest.Index();
}

}  // namespace imgbasic
