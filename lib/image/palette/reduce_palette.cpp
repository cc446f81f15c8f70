#include "lib/image/palette/reduce_palette.h"

#include <algorithm>
#include <numeric>
#include <span>

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

bool AlphaInFullDistance(const ReducePalette& palette) {
    return palette.alphaMode != AlphaMode::Ignored;
}

}  // namespace

CandidateGrid::CandidateGrid(const KVArray<KVColorPalette>& entries) {
    const auto used = std::span(order).first(entries.size());
    std::iota(used.begin(), used.end(), uint8_t{0});
    std::ranges::stable_sort(used, {},
                             [&](uint8_t index) { return CellOf<kBits>(entries[index].Word()); });
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        levels[channel].fill(UINT8_MAX);
        std::ranges::transform(used, levels[channel].begin(), [&](uint8_t index) {
            return static_cast<uint8_t>(ChannelOf(entries[index].Word(), channel) >> (8 - kBits));
        });
    }
}

std::vector<uint8_t> ReducePalette::Candidates(uint32_t color) const {
    // How far an entry's cell is apart from the colour's: the greatest difference of their
    // coordinates.
    std::array<uint8_t, kMaxPaletteEntries> apart{};
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const auto level =
            static_cast<uint8_t>(ChannelOf(color, channel) >> (8 - CandidateGrid::kBits));
        for (size_t i = 0; i < kMaxPaletteEntries; ++i) {
            const uint8_t other = grid->levels[channel][i];
            const auto difference =
                static_cast<uint8_t>(std::max(level, other) - std::min(level, other));
            apart[i] = std::max(apart[i], difference);
        }
    }
    const size_t count = entries.size();
    const uint8_t radius = std::max(std::ranges::min(std::span(apart).first(count)), uint8_t{1});
    std::vector<uint8_t> candidates;
    for (size_t i = 0; i < count; ++i) {
        if (apart[i] == 0) {
            candidates.push_back(grid->order[i]);
        }
    }
    for (size_t i = 0; i < count; ++i) {
        if (apart[i] != 0 && apart[i] <= radius) {
            candidates.push_back(grid->order[i]);
        }
    }
    return candidates;
}

void FinishPalette(ReducePalette& palette) {
    palette.grid.reset();
    palette.alphaMode = AlphaModeOf(palette.entries);
    if (palette.entries.size() >= kGridMinEntries && palette.entries.size() <= kMaxPaletteEntries) {
        palette.grid.emplace(palette.entries);
    }
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
    if (!palette.grid) {
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
