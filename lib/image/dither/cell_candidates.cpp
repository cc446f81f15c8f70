#include "lib/image/dither/cell_candidates.h"

#include <cstdlib>
#include <limits>

namespace imgbasic {

int32_t DistanceFromMiddle(uint32_t color, const CellRange& cell) {
    int32_t sum = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int above = ChannelOf(color, channel) - cell.floor[channel];
        const int twice = 2 * above - cell.length[channel];
        sum += twice * twice;
    }
    return sum;
}

bool DrivesOut(const Candidate& rival, const Candidate& entry, const CellRange& cell) {
    int32_t most = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        most += cell.length[channel] *
                std::abs(ChannelOf(rival.color, channel) - ChannelOf(entry.color, channel));
    }
    return rival.fromMiddle + 4 * most < entry.fromMiddle;
}

void DropHopeless(std::vector<Candidate>& candidates, const CellRange& cell, size_t enough) {
    // Those in the middle of things leave few for the others.
    constexpr int kMostRivals = 12;
    for (Candidate& candidate : candidates) {
        candidate.fromMiddle = DistanceFromMiddle(candidate.color, cell);
    }
    Candidate rival{};
    rival.fromMiddle = -1;
    for (int i = 0; i < kMostRivals && candidates.size() > enough; ++i) {
        const int32_t last = rival.fromMiddle;
        rival.fromMiddle = std::numeric_limits<int32_t>::max();
        for (const Candidate& candidate : candidates) {
            if (candidate.fromMiddle > last && candidate.fromMiddle < rival.fromMiddle) {
                rival = candidate;
            }
        }
        if (rival.fromMiddle == std::numeric_limits<int32_t>::max()) {
            return;
        }
        std::erase_if(candidates, [&](const Candidate& other) {
            return other.fromMiddle > rival.fromMiddle && DrivesOut(rival, other, cell);
        });
    }
}

}  // namespace imgbasic
