#include "lib/image/dither/closest_entry_lookup.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <numeric>
#include <span>

#include "lib/image/palette/closest_entry_rule.h"

namespace imgbasic {
namespace {

using Tables = ClosestEntryTables;

/// As many as the table can number, less what would make it a block of huge pages. Few pictures
/// have colours in as many cells; when the blocks are used up, all is forgotten and begun anew.
constexpr uint32_t kMaxBlocks = UINT16_MAX - 1;

constexpr uint32_t kGridCellMask = 0x1F1F1F1F;
static_assert((kGridCellMask & 0xFF) == 0xFFU >> CandidateGrid::kBits);
static_assert(Tables::kBits >= CandidateGrid::kBits && CandidateGrid::kBits >= 1,
              "cells lie inside one of the grid, and on one side of the middle of alpha");
static_assert(kMaxPaletteEntries <= 1 << CandidateBlock::kIndexBits);

bool Contains(const CellRange& cell, uint32_t color) {
    for (size_t channel = 0; channel < kAlphaChannel; ++channel) {
        const int above = ChannelOf(color, channel) - cell.floor[channel];
        if (above < 0 || above > cell.length[channel]) {
            return false;
        }
    }
    return true;
}

/// The cell around a colour when cells keep the top `bits` bits of its channels, of alpha no more
/// than the grid does.
CellRange CellAround(uint32_t color, int bits) {
    CellRange cell{};
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int kept = channel == kAlphaChannel ? CandidateGrid::kBits : bits;
        cell.length[channel] = (1 << (8 - kept)) - 1;
        cell.floor[channel] = ChannelOf(color, channel) & ~cell.length[channel];
    }
    return cell;
}

CandidateBlock MakeBlock(std::span<const Candidate> candidates, bool ranked, uint32_t gridFloor) {
    CandidateBlock block;
    std::ranges::fill(block.weights, 0);
    std::ranges::fill(block.ranks, CandidateBlock::kNoEntry);
    for (size_t i = 0; i < candidates.size(); ++i) {
        if (!ranked) {
            block.ranks[i] = CandidateBlock::kUnranked | candidates[i].index;
            continue;
        }
        int32_t distance = 0;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            const int apart =
                ChannelOf(candidates[i].color, channel) - ChannelOf(gridFloor, channel);
            distance += apart * apart;
        }
        block.weights[i] = candidates[i].color ^ 0x80808080;
        block.ranks[i] = distance << CandidateBlock::kIndexBits | candidates[i].index;
    }
    return block;
}

/// All ranks are alike but for the indices, whatever the colour.
CandidateBlock MakeUndecidedBlock() {
    CandidateBlock block{};
    std::iota(std::begin(block.ranks), std::end(block.ranks), CandidateBlock::kUnranked);
    return block;
}

}  // namespace

ClosestEntryLookup::ClosestEntryLookup(const ReducePalette& palette)
    : palette_(palette),
      alphaInDistance_(palette.alphaMode == AlphaMode::Axis ||
                       (palette.alphaMode == AlphaMode::First && !palette.grid)),
      cells_(AllocateZeroed(Tables::kCells * sizeof(uint16_t))),
      blockMemory_(AllocateZeroed((kMaxBlocks + 1) * sizeof(CandidateBlock))) {
    const size_t count = palette.entries.size();
    if (count < 1 || count > kMaxPaletteEntries || cells_ == nullptr || blockMemory_ == nullptr) {
        return;
    }
    void* memory = blockMemory_.get();
    size_t space = (kMaxBlocks + 1) * sizeof(CandidateBlock);
    blocks_ = static_cast<CandidateBlock*>(
        std::align(alignof(CandidateBlock), kMaxBlocks * sizeof(CandidateBlock), memory, space));
    blocks_[Tables::kUnknown] = MakeUndecidedBlock();
    blocks_[Tables::kSearchPalette] = MakeUndecidedBlock();
    blockCount_ = Tables::kFirstBlock;
    tables_.cells = reinterpret_cast<const uint16_t*>(cells_.get());
    tables_.blocks = blocks_;
    tables_.colorMask = alphaInDistance_ ? 0xFFFFFFFF : 0x00FFFFFF;
    std::ranges::transform(palette.entries, tables_.colors, &KVColorPalette::Word);
}

const ClosestEntryTables& ClosestEntryLookup::Tables() const {
    return tables_;
}

uint8_t ClosestEntryLookup::Find(uint32_t color) {
    const uint16_t& number = tables_.cells[TableCellOf(color)];
    if (number == Tables::kUnknown) {
        Prepare(color);
    }
    if (number == Tables::kSearchPalette) {
        return FindInPalette(color);
    }
    // Which alpha is closer has been sorted out: it is the same in all entries, or a channel
    // like the others.
    ClosestEntryRule rule(AlphaMode::Axis, alphaInDistance_, color);
    for (const CandidateBlock* block = tables_.blocks + number;; ++block) {
        for (const int32_t rank : block->ranks) {
            const auto index = static_cast<uint8_t>(rank);
            if (rank == CandidateBlock::kNoEntry || rule.Compare(tables_.colors[index], index)) {
                return static_cast<uint8_t>(rule.Index());
            }
        }
        if (block->IsRanked()) {
            return static_cast<uint8_t>(rule.Index());
        }
    }
}

uint8_t ClosestEntryLookup::FindInPalette(uint32_t color) const {
    return static_cast<uint8_t>(palette_.grid ? FindNearestInGrid(palette_, color)
                                              : FindNearest(palette_, color));
}

/// Fills in the largest cell around the color that a block is enough for.
void ClosestEntryLookup::Prepare(uint32_t color) {
    const auto [place, isNew] = gridCells_.try_emplace(CellOf<CandidateGrid::kBits>(color));
    GridCell& gridCell = place->second;
    CellRange cell = CellAround(color, CandidateGrid::kBits);
    if (isNew) {
        gridCell = ListCandidates(color);
        DropHopeless(gridCell.candidates, cell, CandidateBlock::kSize);
    }
    const auto isDecided = [&] {
        return std::ranges::none_of(gridCell.enders,
                                    [&](uint32_t ender) { return Contains(cell, ender); });
    };
    std::vector<Candidate> candidates = gridCell.candidates;
    for (int bits = CandidateGrid::kBits + 1;
         bits <= Tables::kBits && (candidates.size() > CandidateBlock::kSize || !isDecided());
         ++bits) {
        cell = CellAround(color, bits);
        DropHopeless(candidates, cell, CandidateBlock::kSize);
    }
    Fill(cell, isDecided() ? AddBlocks(candidates, color) : Tables::kSearchPalette);
}

ClosestEntryLookup::GridCell ClosestEntryLookup::ListCandidates(uint32_t color) const {
    std::vector<uint8_t> indices(palette_.entries.size());
    if (palette_.grid) {
        indices = palette_.Candidates(color);
    } else {
        std::iota(indices.begin(), indices.end(), uint8_t{0});
    }
    const auto alphaDistance = [&](uint8_t index) {
        return palette_.alphaMode == AlphaMode::First
                   ? std::abs(ChannelOf(tables_.colors[index], kAlphaChannel) -
                              ChannelOf(color, kAlphaChannel))
                   : 0;
    };
    int closestAlpha = std::numeric_limits<int>::max();
    for (const uint8_t index : indices) {
        closestAlpha = std::min(closestAlpha, alphaDistance(index));
    }
    GridCell cell;
    for (const uint8_t index : indices) {
        if (alphaDistance(index) == closestAlpha) {
            cell.candidates.push_back({index, tables_.colors[index] & tables_.colorMask});
        } else if (cell.candidates.empty() && !alphaInDistance_) {
            cell.enders.push_back(tables_.colors[index]);
        }
    }
    return cell;
}

/// Answers the number of the first block.
uint16_t ClosestEntryLookup::AddBlocks(std::span<const Candidate> candidates, uint32_t color) {
    constexpr size_t kSize = CandidateBlock::kSize;
    // The last block of entries that are not ranked has room for what ends the search.
    const size_t count = candidates.size() <= kSize ? 1 : candidates.size() / kSize + 1;
    if (blockCount_ + count > kMaxBlocks) {
        std::fill_n(Cells(), Tables::kCells, Tables::kUnknown);
        blockCount_ = Tables::kFirstBlock;
    }
    const auto first = static_cast<uint16_t>(blockCount_);
    for (size_t i = 0; i < count; ++i) {
        const auto some = candidates.subspan(i * kSize);
        blocks_[blockCount_++] = MakeBlock(some.first(std::min(some.size(), kSize)), count == 1,
                                           color & ~kGridCellMask & tables_.colorMask);
    }
    return first;
}

void ClosestEntryLookup::Fill(const CellRange& cell, uint16_t number) {
    uint32_t corner = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        corner |= static_cast<uint32_t>(cell.floor[channel]) << (8 * channel);
    }
    uint16_t* first = Cells() + TableCellOf(corner);
    const auto levels = static_cast<size_t>(cell.length[0] + 1) >> (8 - Tables::kBits);
    for (size_t red = 0; red < levels; ++red) {
        for (size_t green = 0; green < levels; ++green) {
            const size_t place = red << 2 * Tables::kBits | green << Tables::kBits;
            std::fill_n(first + place, levels, number);
        }
    }
}

uint16_t* ClosestEntryLookup::Cells() {
    return reinterpret_cast<uint16_t*>(cells_.get());
}

}  // namespace imgbasic
