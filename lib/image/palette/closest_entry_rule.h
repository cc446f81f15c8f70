#pragma once

#include <cstdint>
#include <cstdlib>
#include <limits>

#include "lib/image/palette/color_word.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// The rule by which one entry is closer to a colour than another, applied to the entries that it
/// is shown one after the other. In this order: with AlphaMode::First the closer alpha; the less
/// squared distance; the less sum of absolute differences, alpha's always among them; and of
/// equals in everything the one that was shown first.
class ClosestEntryRule {
  public:
    /// `alphaInDistance`: whether alpha is a channel of the squared distance.
    ClosestEntryRule(AlphaMode mode, bool alphaInDistance, uint32_t query)
        : mode_(mode), channels_(alphaInDistance ? 4 : 3), query_(query) {}

    /// True when this entry ends the search: it is the best so far, at distance zero.
    bool Compare(uint32_t color, int32_t index) {
        const int alphaDistance = std::abs(ChannelOf(query_, 3) - ChannelOf(color, 3));
        if (mode_ == AlphaMode::First && alphaDistance > bestAlpha_) {
            return false;
        }
        int distance = 0;
        for (size_t channel = 0; channel < channels_; ++channel) {
            const int difference = ChannelOf(query_, channel) - ChannelOf(color, channel);
            distance += difference * difference;
        }
        const bool closerAlpha = mode_ == AlphaMode::First && alphaDistance < bestAlpha_;
        if (!closerAlpha &&
            (distance > best_ || (distance == best_ && Spread(color) >= Spread(bestColor_)))) {
            return false;
        }
        best_ = distance;
        bestAlpha_ = alphaDistance;
        bestColor_ = color;
        index_ = index;
        return distance == 0;
    }

    int32_t Index() const { return index_; }

  private:
    int Spread(uint32_t color) const {
        int sum = 0;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            sum += std::abs(ChannelOf(query_, channel) - ChannelOf(color, channel));
        }
        return sum;
    }

    AlphaMode mode_;
    size_t channels_;
    uint32_t query_;
    int best_ = std::numeric_limits<int>::max();
    int bestAlpha_ = std::numeric_limits<int>::max();
    uint32_t bestColor_ = 0;
    int32_t index_ = -1;
};

}  // namespace imgbasic
