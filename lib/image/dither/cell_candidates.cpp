#include "lib/image/dither/cell_candidates.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <span>

#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {
namespace {

/// Four times the squared distance of a colour from the middle of a cell, which may lie between two
/// levels.
int32_t DistanceFromMiddle(uint32_t color, const CellRange& cell) {
    int32_t sum = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int above = ChannelOf(color, channel) - cell.floor[channel];
        const int twice = 2 * above - cell.length[channel];
        sum += twice * twice;
    }
    return sum;
}

/// Candidates of which rivals drive out others, the one nearest to the middle first. Which of them
/// go is as good as random: without branches, with each figure in an array of its own and factors
/// of 16 bits, compilers compare several at once.
class Contest {
  public:
    Contest(std::span<const Candidate> candidates, const CellRange& cell)
        : cell_(cell), total_(candidates.size()) {
        for (size_t i = 0; i < total_; ++i) {
            const uint32_t color = candidates[i].color;
            fromMiddle_[i] = DistanceFromMiddle(color, cell);
            waiting_[i] = fromMiddle_[i];
            for (size_t channel = 0; channel < kColorChannels; ++channel) {
                levels_[channel][i] = static_cast<int16_t>(ChannelOf(color, channel));
            }
        }
    }

    bool IsDropped(size_t i) const { return fromMiddle_[i] == kDropped; }

    size_t CountLeft() const {
        const auto used = std::span(fromMiddle_).first(total_);
        return total_ - static_cast<size_t>(std::ranges::count(used, kDropped));
    }

    /// Drops what the next rival drives out, see DrivesOut. False when all have had their turn.
    bool DropBehindNextRival() {
        int32_t distance = kDropped;
        for (size_t i = 0; i < total_; ++i) {
            distance = std::min(distance, waiting_[i]);
        }
        if (distance == kDropped) {
            return false;
        }
        const auto turn = std::ranges::find(waiting_, distance);
        *turn = kDropped;
        const auto rival = static_cast<size_t>(turn - waiting_.begin());
        std::array<int16_t, kColorChannels> levels{};
        std::array<int16_t, kColorChannels> lengths{};
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            levels[channel] = levels_[channel][rival];
            lengths[channel] = static_cast<int16_t>(cell_.length[channel]);
        }
        for (size_t i = 0; i < total_; ++i) {
            int32_t most = 0;
            for (size_t channel = 0; channel < kColorChannels; ++channel) {
                const int apart = std::abs(levels[channel] - levels_[channel][i]);
                most += lengths[channel] * static_cast<int16_t>(apart);
            }
            const bool out = distance + 4 * most < fromMiddle_[i];
            fromMiddle_[i] = out ? kDropped : fromMiddle_[i];
            waiting_[i] = out ? kDropped : waiting_[i];
        }
        return true;
    }

  private:
    static constexpr int32_t kDropped = std::numeric_limits<int32_t>::max();

    const CellRange& cell_;
    size_t total_;
    std::array<int32_t, kMaxPaletteEntries> fromMiddle_;  ///< kDropped: driven out
    std::array<int32_t, kMaxPaletteEntries> waiting_;     ///< kDropped: or had its turn as a rival
    std::array<std::array<int16_t, kMaxPaletteEntries>, kColorChannels> levels_;
};

}  // namespace

bool DrivesOut(uint32_t rival, uint32_t entry, const CellRange& cell) {
    int32_t greatest = DistanceFromMiddle(rival, cell) - DistanceFromMiddle(entry, cell);
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int apart = ChannelOf(rival, channel) - ChannelOf(entry, channel);
        greatest += 4 * cell.length[channel] * std::abs(apart);
    }
    return greatest < 0;
}

void DropHopeless(std::vector<Candidate>& candidates, const CellRange& cell, size_t enough) {
    // Those in the middle of things leave few for the others.
    constexpr int kMostRivals = 12;
    if (candidates.size() <= enough) {
        return;
    }
    Contest contest(candidates, cell);
    int rivals = 0;
    while (contest.CountLeft() > enough && rivals < kMostRivals && contest.DropBehindNextRival()) {
        ++rivals;
    }
    size_t kept = 0;
    for (size_t i = 0; i < candidates.size(); ++i) {
        candidates[kept] = candidates[i];
        kept += contest.IsDropped(i) ? 0 : 1;
    }
    candidates.resize(kept);
}

}  // namespace imgbasic
