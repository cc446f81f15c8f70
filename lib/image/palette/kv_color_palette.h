#pragma once

#include <cstdint>

namespace imgbasic {

/// One palette entry.
struct KVColorPalette {
    uint8_t blue = 0;
    uint8_t green = 0;
    uint8_t red = 0;
    uint8_t alpha = 0;
    uint32_t count = 0;  ///< pixels that the entry was made from
    uint32_t reserved = 0;

    // While a palette is thinned; squared distances over all four channels.
    int32_t nearest = -1;         ///< the entry that is closest to this one, -1 before it is known
    int32_t nearestDistance = 0;  ///< from that entry
    int32_t grayDistance = 0;     ///< from 127 in every channel

    constexpr KVColorPalette() = default;
    constexpr KVColorPalette(uint32_t word, uint32_t pixels)
        : blue(static_cast<uint8_t>(word)),
          green(static_cast<uint8_t>(word >> 8)),
          red(static_cast<uint8_t>(word >> 16)),
          alpha(static_cast<uint8_t>(word >> 24)),
          count(pixels) {}

    /// The colour as a pixel word.
    constexpr uint32_t Word() const {
        return static_cast<uint32_t>(blue | green << 8 | red << 16) | static_cast<uint32_t>(alpha)
                                                                          << 24;
    }
};

}  // namespace imgbasic
