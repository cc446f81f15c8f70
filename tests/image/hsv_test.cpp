#include "lib/image/hsv.h"

#include <gtest/gtest.h>

namespace imgbasic {
namespace {

TEST(PackedHsv, PacksHueSaturationAndValue) {
    constexpr struct {
        uint32_t argb;
        uint32_t hue;
        uint32_t saturation;
        uint32_t value;
    } kCases[] = {
        {0x000000, 0, 0, 0},          {0xFFFFFF, 0, 0, 255},     {0xFF808080, 0, 0, 128},
        {0xFF0000, 0, 255, 255},      {0xFFFF00, 60, 255, 255},  {0x00FF00, 120, 255, 255},
        {0x12'00FFFF, 180, 255, 255}, {0x0000FF, 240, 255, 255}, {0xFF00FF, 300, 255, 255},
        {0xFF0001, 0, 255, 255},  // -60 / 255 truncates to 0
        {0xFF0005, 359, 255, 255},    {0x0A0B0C, 210, 42, 12},   {0x0A0C0B, 150, 42, 12},
        {0x010000, 0, 255, 1},        {0xFF8000, 30, 255, 255},  {0x646364, 300, 2, 100},
    };
    for (const auto& c : kCases) {
        const uint32_t packed = PackedHsv(c.argb);
        EXPECT_EQ(packed, c.value << 17 | c.saturation << 9 | c.hue) << std::hex << c.argb;
        EXPECT_EQ(HsvSaturation(packed), c.saturation);
        EXPECT_EQ(HsvValue(packed), c.value);
    }
}

}  // namespace
}  // namespace imgbasic
