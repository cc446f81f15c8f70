#include "lib/image/dither/closest_entry_lookup.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <span>

#include "lib/image/palette/closest_entry_rule.h"

namespace imgbasic {
namespace {

/// Squared distances from an entry to the nearest and farthest colour of a cell, and the distance
/// of its alpha where that is compared before any colour. Squared distances are sums over the
/// channels, each of which has its nearest and its farthest level by itself.
///
/// An alpha that is compared first is 0 or 255 for every entry. The colours of one cell, none of
/// which reaches over the middle between 127 and 128, agree on which of the two is closer, and none
/// is as close to both: that of the cell's lowest colour decides for all.
struct Reach {
    int alpha = 0;
    int least = 0;
    int greatest = 0;
};

constexpr int kCellShift = 8 - ClosestEntryTables::kBits;

int CellFloor(uint32_t cell, size_t channel) {
    return CellLevel<ClosestEntryTables::kBits>(cell, channel) << kCellShift;
}

/// In one channel, from the entry's level to a cell's levels [floor, floor + kLength]:
///
///      entry below     e ....... [=======]        near -above             far kLength - above
///      entry within          [===e=======]        near 0                  far the longer side
///      entry above           [=======] ....... e  near above - kLength    far above
///
/// where `above` is how far the entry is above the floor; the greatest of the three is the one
/// that applies.
Reach ReachOf(uint32_t color, uint32_t cell, AlphaMode mode, bool alphaInDistance) {
    Reach reach;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        constexpr int kLength = (1 << kCellShift) - 1;
        const int above = ChannelOf(color, channel) - CellFloor(cell, channel);
        if (channel == kAlphaChannel && mode == AlphaMode::First) {
            reach.alpha = std::abs(above);
        }
        if (channel == kAlphaChannel && !alphaInDistance) {
            continue;
        }
        const int near = std::max({above - kLength, -above, 0});
        const int far = std::max(above, kLength - above);
        reach.least += near * near;
        reach.greatest += far * far;
    }
    return reach;
}

uint8_t FindInBlocks(const CandidateBlock* block, bool alphaInDistance, uint32_t color) {
    // Which alpha is closer has been sorted out: it is the same in all entries, or a channel
    // like the others.
    ClosestEntryRule rule(AlphaMode::Axis, alphaInDistance, color);
    for (;; ++block) {
        for (uint32_t i = 0; i < block->count; ++i) {
            if (rule.Compare(block->colors[i], block->indices[i])) {
                return block->indices[i];
            }
        }
        if (!block->more) {
            return static_cast<uint8_t>(rule.Index());
        }
    }
}

/// Two blocks for every cell, though only cells that a picture has colours in take any. When they
/// are used up, the palette is searched for further cells.
constexpr uint32_t kMaxBlocks = 1 << 17;
static_assert(kMaxBlocks <= ClosestEntryTables::kSearchPalette, "numbers of blocks");
static_assert(CandidateGrid::kMaxEntries - 1 <= UINT8_MAX, "CandidateBlock::indices");

}  // namespace

ClosestEntryLookup::ClosestEntryLookup(const ReducePalette& palette)
    : palette_(palette),
      alphaInDistance_(palette.alphaMode == AlphaMode::Axis ||
                       (palette.alphaMode == AlphaMode::First && palette.Grid() == nullptr)),
      cells_(AllocateZeroed(kCellCount<ClosestEntryTables::kBits> * sizeof(uint32_t))),
      blocks_(AllocateZeroed(kMaxBlocks * sizeof(CandidateBlock))) {
    tables_.cells = reinterpret_cast<const uint32_t*>(cells_.get());
    tables_.blocks = reinterpret_cast<const CandidateBlock*>(blocks_.get());
    tables_.colorMask = alphaInDistance_ ? 0xFFFFFFFF : 0x00FFFFFF;
    std::ranges::transform(palette.entries, tables_.colors, &KVColorPalette::Word);
    if (palette.Grid() == nullptr) {
        allEntries_.resize(palette.entries.size());
        std::iota(allEntries_.begin(), allEntries_.end(), uint8_t{0});
    }
}

const ClosestEntryTables& ClosestEntryLookup::Tables() const {
    return tables_;
}

uint8_t ClosestEntryLookup::Find(uint32_t color) {
    const uint32_t number = CellOf<ClosestEntryTables::kBits>(color);
    uint32_t cell = tables_.cells[number];
    if (cell == ClosestEntryTables::kUnknown) {
        cell = Prepare(number);
        reinterpret_cast<uint32_t*>(cells_.get())[number] = cell;
    }
    if (cell == ClosestEntryTables::kSearchPalette) {
        return FindInPalette(color);
    }
    return FindInBlocks(tables_.blocks + cell, alphaInDistance_, color);
}

uint8_t ClosestEntryLookup::FindInPalette(uint32_t color) const {
    return static_cast<uint8_t>(palette_.Grid() != nullptr ? FindNearestInGrid(palette_, color)
                                                           : FindNearest(palette_, color));
}

/// Sorts out the candidates of a cell, as ClosestEntryLookup explains it, and answers what its
/// place in the table gets.
uint32_t ClosestEntryLookup::Prepare(uint32_t number) {
    uint32_t corner = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        corner |= static_cast<uint32_t>(CellFloor(number, channel)) << (8 * channel);
    }
    const std::span<const uint8_t> entries =
        palette_.Grid() != nullptr ? palette_.Candidates(corner) : allEntries_;
    std::array<Reach, CandidateGrid::kMaxEntries> reaches;
    int closestAlpha = std::numeric_limits<int>::max();
    for (size_t i = 0; i < entries.size(); ++i) {
        reaches[i] =
            ReachOf(tables_.colors[entries[i]], number, palette_.alphaMode, alphaInDistance_);
        closestAlpha = std::min(closestAlpha, reaches[i].alpha);
    }
    int bound = std::numeric_limits<int>::max();
    for (size_t i = 0; i < entries.size(); ++i) {
        if (reaches[i].alpha == closestAlpha) {
            bound = std::min(bound, reaches[i].greatest);
        }
    }
    candidates_.clear();
    for (size_t i = 0; i < entries.size(); ++i) {
        if (reaches[i].alpha == closestAlpha) {
            // Not `<`: at a corner of the cell an entry can be as close as the bound.
            if (reaches[i].least <= bound) {
                candidates_.push_back(entries[i]);
            }
        } else if (reaches[i].least == 0 && candidates_.empty()) {
            // At distance zero it ends the search although its alpha is farther, unless an entry
            // of closer alpha has been compared before.
            return ClosestEntryTables::kSearchPalette;
        }
    }
    return AddBlocks(candidates_);
}

uint32_t ClosestEntryLookup::AddBlocks(const std::vector<uint8_t>& candidates) {
    constexpr size_t kSize = CandidateBlock::kSize;
    const size_t needed = (candidates.size() + kSize - 1) / kSize;
    if (blockCount_ + needed > kMaxBlocks) {
        return ClosestEntryTables::kSearchPalette;
    }
    const uint32_t first = blockCount_;
    for (size_t begin = 0; begin < candidates.size(); begin += kSize) {
        auto& block = reinterpret_cast<CandidateBlock*>(blocks_.get())[blockCount_++];
        const size_t count = std::min(candidates.size() - begin, kSize);
        for (size_t i = 0; i < kSize; ++i) {
            const uint8_t index = candidates[begin + (i < count ? i : 0)];
            block.indices[i] = index;
            block.colors[i] = tables_.colors[index];
        }
        block.count = static_cast<uint32_t>(count);
        block.more = begin + kSize < candidates.size();
    }
    return first;
}

}  // namespace imgbasic
