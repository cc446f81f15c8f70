#include "lib/image/nearest_lookup.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <span>

namespace imgbasic {
namespace {

/// Squared distances from an entry to the nearest and farthest colour of a cell, and the distance
/// of its alpha where that is compared before any colour.
struct Reach {
    int alpha = 0;
    int least = 0;
    int greatest = 0;
};

/// An alpha that is compared first is 0 or 255 for every entry, and the colours of one cell, whose
/// alpha floor is a multiple of 8, agree on which of the two is closer: the floor decides.
Reach ReachOf(uint32_t color, uint32_t cell, AlphaMode mode, bool alphaInDistance) {
    Reach reach;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int value = ChannelOf(color, channel);
        const int floor = CellFloor(cell, channel);
        const int ceiling = floor + (1 << kCellShift) - 1;
        if (channel == kAlphaChannel && mode == AlphaMode::First) {
            reach.alpha = std::abs(value - floor);
        }
        if (channel == kAlphaChannel && !alphaInDistance) {
            continue;
        }
        const int near = std::clamp(value, floor, ceiling) - value;
        const int far = std::max(std::abs(value - floor), std::abs(value - ceiling));
        reach.least += near * near;
        reach.greatest += far * far;
    }
    return reach;
}

}  // namespace

NearestLookup::NearestLookup(const ReducePalette& palette)
    : palette_(palette),
      alphaInDistance_(palette.alphaMode == AlphaMode::Axis ||
                       (palette.alphaMode == AlphaMode::First && palette.Grid() == nullptr)),
      cells_(AllocateZeroed(kColorCells * sizeof(uint32_t))),
      pool_(1) {
    if (palette.Grid() == nullptr) {
        allEntries_.resize(palette.entries.size());
        std::iota(allEntries_.begin(), allEntries_.end(), uint8_t{0});
    }
}

uint8_t NearestLookup::FindInPalette(uint32_t color) const {
    return static_cast<uint8_t>(palette_.Grid() != nullptr ? FindNearestInGrid(palette_, color)
                                                           : FindNearest(palette_, color));
}

uint32_t NearestLookup::Prepare(uint32_t number) {
    uint32_t corner = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        corner |= static_cast<uint32_t>(CellFloor(number, channel)) << (8 * channel);
    }
    const std::span<const uint8_t> entries =
        palette_.Grid() != nullptr ? palette_.Candidates(corner) : allEntries_;
    if (pool_.size() + entries.size() > kPoolSize) {
        return kUnknown;
    }
    std::array<Reach, CandidateGrid::kMaxEntries> reaches;
    int closestAlpha = std::numeric_limits<int>::max();
    for (size_t i = 0; i < entries.size(); ++i) {
        reaches[i] = ReachOf(palette_.entries[entries[i]].Word(), number, palette_.alphaMode,
                             alphaInDistance_);
        closestAlpha = std::min(closestAlpha, reaches[i].alpha);
    }
    int bound = std::numeric_limits<int>::max();
    for (size_t i = 0; i < entries.size(); ++i) {
        if (reaches[i].alpha == closestAlpha) {
            bound = std::min(bound, reaches[i].greatest);
        }
    }
    const auto first = static_cast<uint32_t>(pool_.size());
    bool closestSeen = false;
    for (size_t i = 0; i < entries.size(); ++i) {
        const bool closest = reaches[i].alpha == closestAlpha;
        // An entry of farther alpha is the answer only when the search meets it first and it
        // is at distance zero.
        if (closest ? reaches[i].least <= bound : !closestSeen && reaches[i].least == 0) {
            pool_.push_back({palette_.entries[entries[i]].Word(), entries[i], false});
        }
        closestSeen = closestSeen || closest;
    }
    pool_.back().last = true;
    uint32_t& cell = Cells()[number];
    cell = first;
    if (pool_.size() == first + 1) {
        cell = kSingle | pool_.back().index;
        pool_.pop_back();
    }
    return cell;
}

}  // namespace imgbasic
