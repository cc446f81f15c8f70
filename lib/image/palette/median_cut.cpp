#include "lib/image/palette/median_cut.h"

#include <algorithm>

namespace imgbasic {
namespace {

using Channel = ColorBox::Channel;

/// The channel to cut, null when all are set aside.
Channel* LongestChannel(ColorBox& box) {
    static constexpr size_t kPrecedence[] = {3, 1, 2, 0};
    Channel* longest = nullptr;
    for (const size_t number : kPrecedence) {
        Channel& channel = box.channels[number];
        if (!channel.setAside && (longest == nullptr || channel.Extent() > longest->Extent())) {
            longest = &channel;
        }
    }
    return longest;
}

/// The last level of the lower part of a channel with an extent of 1 or more, or nothing. The
/// median is the first level at which more than half of the pixels have been counted:
///
///      pixels     . : . | : . .          below   pixels before the median
///      level    min ... median ... max   upTo    pixels up to and with it
///
/// The cut comes after the median, or before it where the part above would be too small. At the
/// first level there is no "before", at the last no "after"; `least` pixels in the smaller part are
/// insisted upon there, and for two levels. A median in between is always taken: with room above,
/// after it; without, before it, unless there is too little below as well. Then neither side is
/// good, and the part above takes what there is.
///
/// The median is found before the walk leaves the channel, since all levels together hold
/// `count`, which is more than its half.
std::optional<int> MedianEnd(const Channel& channel, uint64_t count, uint64_t least) {
    const auto at = [&](int level) { return channel.levels[static_cast<size_t>(level)]; };
    if (channel.Extent() == 1) {
        return at(channel.min) < least || at(channel.max) < least ? std::nullopt
                                                                  : std::optional(channel.min);
    }
    int median = channel.min;
    uint64_t below = 0;
    uint64_t upTo = at(median);
    while (upTo <= count / 2) {
        below = upTo;
        upTo += at(++median);
    }
    const bool roomAbove = upTo <= count - least;
    if (median == channel.min) {
        return roomAbove ? std::optional(median) : std::nullopt;
    }
    if (median == channel.max) {
        return below >= least ? std::optional(median - 1) : std::nullopt;
    }
    return roomAbove || below <= least ? median : median - 1;
}

/// The work of DivideIntoBoxes. A cut gives the upper part a new box and leaves the lower one in
/// the old; each colour knows its box, so that both are counted anew in one pass over the colours.
/// The order list says whose turn it is, and in the end which boxes give colours first.
class BoxDivider {
  public:
    BoxDivider(std::vector<CoarseColor>& colors, ColorBoxes& result)
        : colors_(colors), boxes_(result.boxes), order_(result.order) {
        boxes_.reserve(kMaxBoxes);
        boxes_.emplace_back();
        order_.push_back(0);
        for (CoarseColor& color : colors_) {
            color.box = 0;
            AddTo(boxes_[0], color);
        }
    }

    /// Fully transparent pixels and fully opaque ones get boxes of their own, as far as there are
    /// such and others:
    ///
    ///      alpha level     0   |   1 ... levels - 2   |   levels - 1
    ///      box             0   |          1           |       2
    ///
    /// The second cut is made in the last box, which is the first where there was no first cut.
    void SplitByAlpha(int levels) {
        const Channel& all = boxes_[0].channels[kAlphaChannel];
        if (all.min == 0 && all.max >= 1) {
            Split(0, kAlphaChannel, 0);
        }
        const size_t last = boxes_.size() - 1;
        const Channel& alpha = boxes_[last].channels[kAlphaChannel];
        if (alpha.max == levels - 1 && alpha.min != levels - 1) {
            Split(last, kAlphaChannel, levels - 2);
        }
    }

    /// Cuts in passes over all boxes, largest first. When nothing is left to cut, smaller parts
    /// are allowed and every channel is tried again, three times since the last cut: the part
    /// that an end must have goes from a quarter to an eighth, a sixteenth, a thirty-second. A
    /// later cut does not make it larger again; pictures with few dominant and many rare colours
    /// get that far, and beyond.
    void CutAll() {
        // No box has as many pixels: from there on every divisor asks for none.
        constexpr uint64_t kGreatestDivisor = uint64_t{1} << 33;
        static_assert(kGreatestDivisor > UINT32_MAX);
        uint64_t divisor = 4;
        int idlePasses = 0;
        SortOrder();
        while (true) {
            const size_t before = boxes_.size();
            if (!CutOnce(divisor)) {
                return;
            }
            if (boxes_.size() > before) {
                SortOrder();
                idlePasses = 0;
                continue;
            }
            if (idlePasses > 2) {
                return;
            }
            ++idlePasses;
            divisor = std::min(divisor * 2, kGreatestDivisor);
            for (ColorBox& box : boxes_) {
                for (Channel& channel : box.channels) {
                    channel.setAside = false;
                }
            }
        }
    }

  private:
    static void AddTo(ColorBox& box, const CoarseColor& color) {
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            box.Add(channel, color.level[channel], color.count);
        }
        box.count += color.count;
    }

    /// Gives what lies above level `end` of the channel to a new box. Both boxes' references stay
    /// good, since room for all boxes was reserved; the new one has nothing set aside.
    void Split(size_t number, size_t channel, int end) {
        order_.push_back(boxes_.size());
        ColorBox& upper = boxes_.emplace_back();
        ColorBox& lower = boxes_[number];
        lower.Clear();
        for (CoarseColor& color : colors_) {
            if (color.box != number) {
                continue;
            }
            if (color.level[channel] > end) {
                color.box = static_cast<uint8_t>(boxes_.size() - 1);
                AddTo(upper, color);
            } else {
                AddTo(lower, color);
            }
        }
    }

    /// Tries every box once, in the order as it stands now: the new boxes of a pass have their
    /// turn in the next. False when there is no room for more boxes.
    bool CutOnce(uint64_t divisor) {
        const std::vector<size_t> pass = order_;
        for (const size_t number : pass) {
            const auto cut = FindCut(boxes_[number], divisor);
            if (!cut) {
                continue;
            }
            Split(number, cut->channel, cut->end);
            if (boxes_.size() == kMaxBoxes) {
                return false;
            }
        }
        return true;
    }

    void SortOrder() {
        std::ranges::stable_sort(order_, std::ranges::greater{},
                                 [&](size_t number) { return boxes_[number].count; });
    }

    std::vector<CoarseColor>& colors_;
    std::vector<ColorBox>& boxes_;
    std::vector<size_t>& order_;
};

}  // namespace

void ColorBox::Add(size_t channel, int level, uint32_t pixels) {
    Channel& target = channels[channel];
    target.min = std::min(target.min, level);
    target.max = std::max(target.max, level);
    target.levels[static_cast<size_t>(level)] += pixels;
}

void ColorBox::Clear() {
    for (Channel& channel : channels) {
        const bool setAside = channel.setAside;
        channel = {};
        channel.setAside = setAside;
    }
    count = 0;
}

std::optional<BoxCut> FindCut(ColorBox& box, uint64_t divisor) {
    while (true) {
        Channel* channel = LongestChannel(box);
        if (channel == nullptr || channel->Extent() < 1) {
            return std::nullopt;
        }
        if (const auto end = MedianEnd(*channel, box.count, box.count / divisor)) {
            uint32_t lower = 0;
            for (int level = channel->min; level <= *end; ++level) {
                lower += channel->levels[static_cast<size_t>(level)];
            }
            if (lower > 1 && box.count - lower > 1) {
                return BoxCut{static_cast<size_t>(channel - box.channels.data()), *end, lower};
            }
        }
        channel->setAside = true;
    }
}

ColorBoxes DivideIntoBoxes(std::vector<CoarseColor>& colors, int levels) {
    ColorBoxes result;
    BoxDivider divider(colors, result);
    divider.SplitByAlpha(levels);
    divider.CutAll();
    return result;
}

}  // namespace imgbasic
