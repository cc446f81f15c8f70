#include "lib/image/pixels/hsv.h"

#include <gtest/gtest.h>

namespace imgbasic {
namespace {

constexpr uint32_t kWorked[][4] = {
    // colour, hue, saturation, value
    {0x000000, 0, 0, 0},       {0xFF808080, 0, 0, 128},      {0xFFFF00, 60, 255, 255},
    {0x00FF00, 120, 255, 255}, {0x12'00FFFF, 180, 255, 255}, {0x0000FF, 240, 255, 255},
    {0xFF00FF, 300, 255, 255}, {0xFF0001, 0, 255, 255},      {0xFF0005, 359, 255, 255},
    {0x0A0B0C, 210, 42, 12},   {0x0A0C0B, 150, 42, 12},      {0x010000, 0, 255, 1},
};

TEST(PackedHsv, PacksHueSaturationAndValue) {
    for (const auto& [color, hue, saturation, value] : kWorked) {
        EXPECT_EQ(PackedHsv(color), value << 17 | saturation << 9 | hue) << std::hex << color;
    }
}

}  // namespace
}  // namespace imgbasic
