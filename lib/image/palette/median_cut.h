#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "lib/image/palette/color_word.h"

namespace imgbasic {

constexpr size_t kMaxBoxes = 256;
static_assert(kMaxBoxes - 1 <= UINT8_MAX, "CoarseColor::box");

/// The distinct colours of an image at a few levels per channel.
struct CoarseColor {
    std::array<uint8_t, kColorChannels> level;
    uint8_t box;  ///< the box that holds it
    uint32_t count;
};

/// Pixels within a range of levels of each channel. Heckbert's median cut (1982) divides such
/// boxes, here by the histograms of their channels: what is known of a box is how many of its
/// pixels have each level of each channel, not which colours they are.
struct ColorBox {
    static constexpr int kMaxLevels = 32;

    struct Channel {
        int min = kMaxLevels;  ///< the levels that have pixels lie within [min, max]
        int max = -1;
        bool setAside = false;  ///< not to be chosen for a cut
        std::array<uint32_t, kMaxLevels> levels{};

        int Extent() const { return max - min; }
    };

    std::array<Channel, kColorChannels> channels;
    uint32_t count = 0;

    void Add(size_t channel, int level, uint32_t pixels);
    /// Forgets the pixels, keeps what is set aside.
    void Clear();
};

/// Where a box is divided in two.
struct BoxCut {
    size_t channel;
    int end;         ///< the last level of the lower part
    uint32_t lower;  ///< pixels in the lower part
};

/// Cuts the longest channel near its median. Where a part would be a single pixel, or at an end
/// of the channel less than a `divisor`th of the pixels, the channel is set aside and the next one
/// tried. Of equally long channels alpha comes first, then green, red and blue. Nothing when no
/// channel is left; all that were tried stay set aside.
std::optional<BoxCut> FindCut(ColorBox& box, uint64_t divisor);

/// The boxes and the order in which they give colours to the palette.
struct ColorBoxes {
    std::vector<ColorBox> boxes;
    std::vector<size_t> order;
};

/// Divides the coarse colours, of `levels` levels a channel, into at most kMaxBoxes boxes.
ColorBoxes DivideIntoBoxes(std::vector<CoarseColor>& colors, int levels);

}  // namespace imgbasic
