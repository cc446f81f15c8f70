#include <climits>

#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

constexpr uint16_t kF = kFullScale;

struct GrayCase {
    int32_t calcMode, colorMode;
    RGBA16 pixel, result;
};

struct MonoCase {
    int32_t threshold;
    RGBA16 pixel;
    uint16_t level;
};

/// What the filter makes of one pixel of a merged image; expects it to announce the result.
RGBA16 Merged(ImageProcess& filter, RGBA16 pixel) {
    filter.width = filter.height = 1;
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

TEST(GrayFilter, CalculatesByCalcModeAndTintsByColorMode) {
    constexpr GrayCase kCases[] = {
        {0, 0, {100, 900, 401, kF}, {498, 498, 498, kF}},           // 500
        {1, 0, {100, 900, 401, kF}, {465, 465, 465, kF}},           // 467
        {2, 0, {kF, 0, 0, kF}, {19434, 19434, 19434, kF}},          // 19511
        {2, 0, {1, 2, 3, 0}, {0xFE01, 0xFE01, 0xFE01, 0}},          // 0xFF00
        {3, 0, {0x1281, 0x80, 0, kF}, {4845, 4845, 4845, kF}},      // 0x1300
        {7, 0, {kF, 0x8000, 0, kF}, {0xFE01, 0xFE01, 0xFE01, kF}},  // 0xFF00
        {8, 0, {kF, 0, 0, kF}, {21538, 21538, 21538, kF}},          // 21623
        {8, 0, {1, 2, 3, 0}, {32512, 32512, 32512, 0}},             // 0x7F80
        {9, 0, {kF, 0, 0, kF}, {5286, 5286, 5286, kF}},             // 5307
        {10, 0, {kF, 0, 0, 77}, {0, 0, 0, 77}},
        {INT_MIN, 0, {kF, 0, 0, 77}, {0, 0, 0, 77}},
        {4, 1, {kF, 0, 0, kF}, {0xFE01, 0, 0, kF}},
        {4, 2, {kF, 0, 0, kF}, {0, 0xFE01, 0, kF}},
        {4, 3, {kF, 0, 0, kF}, {0, 0, 0xFE01, kF}},
        {5, 4, {0, kF, 0, kF}, {0xFE01, 0, 0xFE01, kF}},
        {5, 5, {0, kF, 0, kF}, {0, 0xFE01, 0xFE01, kF}},
        {5, 6, {0, kF, 0, kF}, {0xFE01, 0xFE01, 0, kF}},
        {6, 7, {0, 0, kF, kF}, {0x33 * 255, 0x66 * 255, 0x99 * 255, kF}},
        {6, 8, {0, 0, kF, kF}, {1 * 255, 0x80 * 255, 0xFE * 255, kF}},
        {6, -1, {0, 0, kF, kF}, {0, 0, 0, kF}},
    };
    GrayScaleImageProcess gray;
    gray.drawColor = 0xAA336699;
    gray.backColor = 0x0180FE;
    for (const auto& c : kCases) {
        gray.CalcMode = c.calcMode;
        gray.ColorMode = c.colorMode;
        EXPECT_EQ(Merged(gray, c.pixel), c.result) << c.calcMode << ", " << c.colorMode;
    }
}

TEST(MonoFilter, ComparesRedAloneWithAnyThreshold) {
    constexpr MonoCase kCases[] = {
        {128, {0x8000, 0, 0, kF}, kF}, {128, {0x7FFF, kF, kF, kF}, 0},
        {255, {kF, kF, kF, kF}, kF},   {255, {0xFEFF, kF, kF, kF}, 0},
        {255, {1, 2, 3, 0}, kF},       {1, {0xFF, 0, 0, 0x7F80}, 0},
        {256, {0xFFFF, 0, 0, kF}, 0},  {-1, {0, 0, 0, kF}, kF},
        {INT_MAX, {0, 0, 0, kF}, kF},  {INT_MIN, {0, 0, 0, kF}, kF},
    };
    MonoImageProcess mono;
    for (const auto& c : kCases) {
        mono.Threshold = c.threshold;
        EXPECT_EQ(Merged(mono, c.pixel), (RGBA16{c.level, c.level, c.level, c.pixel.a}))
            << c.threshold;
    }
}

}  // namespace
}  // namespace imgbasic
