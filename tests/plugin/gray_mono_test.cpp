#include <gtest/gtest.h>

#include <climits>

#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

/// What the filter makes of one pixel of a merged image; expects it to announce the result.
RGBA16 Merged(ImageProcess& filter, RGBA16 pixel) {
    filter.width = 1;
    filter.height = 1;
    filter.mergedImage = &pixel;
    RGBA16 result{};
    uint32_t resultKind = 7;
    ExecuteArgs args{};
    args.subLayer = -1;
    args.dst = &result;
    args.resultKind = &resultKind;
    EXPECT_TRUE(filter.Execute(args));
    EXPECT_EQ(resultKind, 1U);
    return result;
}

TEST(GrayFilter, TintsByColorModeAndTheHostsColors) {
    constexpr struct {
        int32_t colorMode;
        uint16_t r, g, b;
    } kCases[] = {
        {0, 255, 255, 255}, {1, 255, 0, 0},   {2, 0, 255, 0},   {3, 0, 0, 255},
        {4, 255, 0, 255},   {5, 0, 255, 255}, {6, 255, 255, 0}, {7, 0x33, 0x66, 0x99},
        {8, 1, 0x80, 0xFE}, {9, 0, 0, 0},     {-1, 0, 0, 0},    {INT_MIN, 0, 0, 0},
    };
    GrayScaleImageProcess gray;
    gray.drawColor = 0xAA336699;
    gray.backColor = 0x0180FE;
    for (const auto& c : kCases) {
        gray.ColorMode = c.colorMode;
        const auto full = [](int factor) { return static_cast<uint16_t>(255 * factor); };
        EXPECT_EQ(Merged(gray, {kFullScale, kFullScale, kFullScale, kFullScale}),
                  (RGBA16{full(c.r), full(c.g), full(c.b), kFullScale}))
            << c.colorMode;
    }
}

TEST(GrayFilter, TakesItsModeAndStaysSilentAboutLayers) {
    GrayScaleImageProcess gray;
    gray.CalcMode = 2;
    EXPECT_EQ(Merged(gray, {kFullScale, 0, 0, kFullScale}),
              (RGBA16{19434, 19434, 19434, kFullScale}));
    gray.CalcMode = 10;
    EXPECT_EQ(Merged(gray, {kFullScale, 0, 0, 77}), (RGBA16{0, 0, 0, 77}));
    gray.TargetType = AllLayers;
    const RECT area{0, 0, 1, 1};
    uint32_t resultKind = 7;
    ExecuteArgs args{};
    args.inRect = &area;
    args.resultKind = &resultKind;
    EXPECT_TRUE(gray.Execute(args));
    EXPECT_EQ(resultKind, 7U);
}

TEST(MonoFilter, ThresholdsWithoutOverflow) {
    constexpr struct {
        int32_t threshold;
        uint16_t red;
        uint16_t result;
    } kCases[] = {
        {128, 0x8000, kFullScale},
        {128, 0x7FFF, 0},
        {255, kFullScale, kFullScale},
        {255, 0xFEFF, 0},
        {1, 0xFF, 0},
        {1, 0x100, kFullScale},
        {0, 0, kFullScale},
        {-1, 0, kFullScale},
        {256, 0xFFFF, 0},
        {INT_MAX, 0, kFullScale},
        {INT_MIN, 0, kFullScale},
    };
    MonoImageProcess mono;
    for (const auto& c : kCases) {
        mono.Threshold = c.threshold;
        EXPECT_EQ(Merged(mono, {c.red, 0x1234, 0x5678, kFullScale}),
                  (RGBA16{c.result, c.result, c.result, kFullScale}))
            << c.threshold;
    }
}

}  // namespace
}  // namespace imgbasic
