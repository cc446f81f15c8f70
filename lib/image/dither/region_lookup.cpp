#include "lib/image/dither/region_lookup.h"

#include <algorithm>
#include <array>

namespace imgbasic {
namespace {

constexpr int kGuessLength = (1 << 4) - 1;
constexpr int kGridShift = 8 - CandidateGrid::kBits;
constexpr int kGridLength = (1 << kGridShift) - 1;
constexpr size_t kGuessCells = size_t{1} << 15;

/// Few pictures have colours in as many regions; for the guesses of further ones there is no block.
constexpr size_t kMaxBlocks = 4096;
static_assert(RegionLookup::kMostAsked + kMaxBlocks <= UINT16_MAX);

/// How far a region reaches beyond the cell of the guess, and whether it ends with the grid's cell.
struct Reach {
    int margin;
    bool oneGridCell;
};

/// From the largest errors to be expected to the least; each region lies inside the one before it.
/// With a larger margin a region could have parts in more than two of the grid's cells a channel.
constexpr Reach kReaches[] = {{16, false}, {8, false}, {4, false}, {4, true}};

CellRange RegionAround(uint32_t guess, Reach reach) {
    CellRange region{};
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int level = ChannelOf(guess, channel);
        const int gridFloor = level & ~kGridLength;
        int floor = gridFloor;
        int last = gridFloor + kGridLength;
        if (channel != kAlphaChannel) {
            const int cell = level & ~kGuessLength;
            floor = std::max(cell - reach.margin, reach.oneGridCell ? gridFloor : 0);
            last = std::min(cell + kGuessLength + reach.margin,
                            reach.oneGridCell ? gridFloor + kGridLength : 255);
        }
        region.floor[channel] = floor;
        region.length[channel] = last - floor;
    }
    return region;
}

/// The cells of the grid that a region has a part in or that touch one, by their levels in each
/// channel.
struct Surroundings {
    std::array<int, kColorChannels> first;
    std::array<int, kColorChannels> last;

    bool Contains(uint32_t color) const {
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            const int level = ChannelOf(color, channel) >> kGridShift;
            if (level < first[channel] || level > last[channel]) {
                return false;
            }
        }
        return true;
    }
};

Surroundings SurroundingsOf(const CellRange& region) {
    Surroundings around{};
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int floor = region.floor[channel];
        around.first[channel] = (floor >> kGridShift) - 1;
        around.last[channel] = ((floor + region.length[channel]) >> kGridShift) + 1;
    }
    return around;
}

/// What of a region lies in one cell of the grid: by the bits of `corner` the upper or the lower of
/// two in each channel. Empty, with a negative length, where there is only one.
CellRange PartOf(const CellRange& region, uint32_t corner) {
    CellRange part{};
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int floor = region.floor[channel];
        const int last = floor + region.length[channel];
        const int border = last & ~kGridLength;
        const bool upper = (corner >> channel & 1) != 0;
        part.floor[channel] = upper ? std::max(border, floor) : floor;
        part.length[channel] = (upper ? last : border - 1) - part.floor[channel];
    }
    return part;
}

}  // namespace

RegionLookup::RegionLookup(const ReducePalette& palette)
    : palette_(palette), numbers_(kGuessCells), blocks_(1) {
    if (!palette.grid && palette.alphaMode != AlphaMode::First &&
        palette.entries.size() <= RegionBlock::kSize) {
        const CellRange everything{{}, {255, 255, 255, 255}};
        std::vector<Candidate> candidates;
        for (size_t i = 0; i < palette.entries.size(); ++i) {
            candidates.push_back(CandidateOf(i));
        }
        blocks_.push_back(BlockOf(candidates, everything));
        std::ranges::fill(numbers_, kMostAsked + 1);
    }
}

uint32_t RegionLookup::CellOfGuess(uint32_t guess) {
    return (guess >> 4 & 0xF) | (guess >> 8 & 0xF0) | (guess >> 12 & 0xF00) |
           (guess >> 17 & 0x7000);
}

const uint16_t* RegionLookup::Numbers() const {
    return numbers_.data();
}

const RegionBlock* RegionLookup::Blocks() const {
    return blocks_.data();
}

uint16_t RegionLookup::Ask(uint32_t guess) {
    uint16_t& number = numbers_[CellOfGuess(guess)];
    if (number < kMostAsked && ++number == kMostAsked && blocks_.size() < kMaxBlocks) {
        if (const auto block = MakeBlock(guess)) {
            number = static_cast<uint16_t>(kMostAsked + blocks_.size());
            blocks_.push_back(*block);
        }
    }
    return std::max(number, kMostAsked);
}

std::optional<RegionBlock> RegionLookup::MakeBlock(uint32_t guess) const {
    if (!palette_.grid) {
        return std::nullopt;
    }
    // What is of no use in a region is of none in those inside it either.
    auto candidates = ListCandidates(RegionAround(guess, kReaches[0]));
    for (const Reach& reach : kReaches) {
        const CellRange region = RegionAround(guess, reach);
        DropHopeless(candidates, region, RegionBlock::kSize);
        if (candidates.size() <= RegionBlock::kSize && FitsGrid(candidates, region)) {
            return BlockOf(candidates, region);
        }
    }
    return std::nullopt;
}

Candidate RegionLookup::CandidateOf(size_t index) const {
    const uint32_t mask = palette_.alphaMode == AlphaMode::Axis ? 0xFFFFFFFF : 0x00FFFFFF;
    return {static_cast<uint8_t>(index), palette_.entries[index].Word() & mask};
}

/// The entries that can be candidates in a cell of the grid that the region has a part in.
std::vector<Candidate> RegionLookup::ListCandidates(const CellRange& region) const {
    std::array<uint8_t, kMaxPaletteEntries> touches;
    touches.fill(1);
    const Surroundings around = SurroundingsOf(region);
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const auto& levels = palette_.grid->levels[channel];
        const auto first = static_cast<uint8_t>(around.first[channel]);
        const auto length = static_cast<uint8_t>(around.last[channel] - around.first[channel]);
        for (size_t i = 0; i < kMaxPaletteEntries; ++i) {
            // Below the first it wraps round.
            const auto above = static_cast<uint8_t>(levels[i] - first);
            touches[i] &= static_cast<uint8_t>(above <= length);
        }
    }
    std::vector<Candidate> candidates;
    candidates.reserve(kMaxPaletteEntries);
    for (size_t i = 0; i < palette_.entries.size(); ++i) {
        if (touches[i] != 0) {
            candidates.push_back(CandidateOf(palette_.grid->order[i]));
        }
    }
    return candidates;
}

bool RegionLookup::FitsGrid(std::span<const Candidate> candidates, const CellRange& region) const {
    constexpr uint32_t kCorners = 1 << kColorChannels;
    if (palette_.alphaMode == AlphaMode::First || candidates.empty()) {
        return false;
    }
    std::vector<uint32_t> nearColors;
    std::vector<uint32_t> farColors;
    for (uint32_t corner = 0; corner < kCorners; ++corner) {
        const CellRange part = PartOf(region, corner);
        if (std::ranges::any_of(part.length, [](int length) { return length < 0; })) {
            continue;
        }
        // The candidates of a cell are at least all entries near to it, if there are any.
        const Surroundings around = SurroundingsOf(part);
        nearColors.clear();
        farColors.clear();
        for (const Candidate& candidate : candidates) {
            const bool isNear = around.Contains(palette_.entries[candidate.index].Word());
            (isNear ? nearColors : farColors).push_back(candidate.color);
        }
        const auto isDrivenOut = [&](uint32_t entry) {
            return std::ranges::any_of(
                nearColors, [&](uint32_t rival) { return DrivesOut(rival, entry, part); });
        };
        if (!std::ranges::all_of(farColors, isDrivenOut)) {
            return false;
        }
    }
    return true;
}

RegionBlock RegionLookup::BlockOf(std::span<const Candidate> candidates,
                                  const CellRange& region) const {
    constexpr int kFactor = -2 << RegionBlock::kPlaceBits;
    RegionBlock block{};
    std::ranges::fill(block.ranks, RegionBlock::kNoEntry);
    for (size_t i = 0; i < candidates.size(); ++i) {
        std::array<int16_t, kColorChannels> factors{};
        int32_t square = 0;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            const int level = ChannelOf(candidates[i].color, channel);
            factors[channel] = static_cast<int16_t>(level * kFactor);
            square += level * level;
        }
        std::copy_n(factors.begin(), 2, block.blueGreen[i]);
        std::copy_n(factors.begin() + 2, 2, block.redAlpha[i]);
        block.ranks[i] = square << RegionBlock::kPlaceBits | static_cast<int32_t>(i);
        block.indices[i] = candidates[i].index;
        block.colors[i] = palette_.entries[candidates[i].index].Word();
    }
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        block.least |= static_cast<uint32_t>(region.floor[channel]) << (8 * channel);
        block.room |= static_cast<uint32_t>(region.length[channel]) << (8 * channel);
    }
    return block;
}

}  // namespace imgbasic
