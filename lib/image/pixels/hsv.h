#pragma once

#include <algorithm>
#include <cstdint>

namespace imgbasic {

/// Converts the 8-bit colour 0xAARRGGBB, whose alpha is not looked at, to hue, saturation and value
/// (Smith, 1978): hue from 0 to 359 degrees in bits 0 to 8 (0 for greys), saturation from 0 to 255
/// in bits 9 to 16, value from 0 to 255 in bits 17 to 24. Divisions truncate toward zero.
constexpr uint32_t PackedHsv(uint32_t argb) {
    const auto red = static_cast<int32_t>(argb >> 16 & 0xFF);
    const auto green = static_cast<int32_t>(argb >> 8 & 0xFF);
    const auto blue = static_cast<int32_t>(argb & 0xFF);
    const int32_t value = std::max({red, green, blue});
    const int32_t chroma = value - std::min({red, green, blue});
    if (chroma == 0) {
        return static_cast<uint32_t>(value) << 17;
    }
    int32_t hue = 0;
    if (red == value) {
        hue = (green - blue) * 60 / chroma;
    } else if (green == value) {
        hue = 120 + (blue - red) * 60 / chroma;
    } else {
        hue = 240 + (red - green) * 60 / chroma;
    }
    if (hue < 0) {
        hue += 360;
    }
    const int32_t saturation = chroma * 255 / value;
    return static_cast<uint32_t>(value << 17 | saturation << 9 | hue);
}

constexpr uint32_t HsvSaturation(uint32_t packed) {
    return packed >> 9 & 0xFF;
}

constexpr uint32_t HsvValue(uint32_t packed) {
    return packed >> 17 & 0xFF;
}

}  // namespace imgbasic
