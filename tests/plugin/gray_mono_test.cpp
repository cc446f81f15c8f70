#include <climits>

#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "tests/image/kernel_test.h"
#include "tests/plugin/filter_run.h"

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
template <typename Process>
RGBA16 Merged(FilterRun<Process>& run, RGBA16 pixel) {
    run.merged[0] = pixel;
    EXPECT_TRUE(run.process.Execute(run.Args(0, -1, nullptr)));
    EXPECT_EQ(run.resultKind, 1U);
    return run.dst[0];
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
    FilterRun<GrayScaleImageProcess> run(1, 1, {{}}, {{}});
    run.process.drawColor = 0xAA336699;
    run.process.backColor = 0x0180FE;
    for (const auto& c : kCases) {
        run.process.CalcMode = c.calcMode;
        run.process.ColorMode = c.colorMode;
        EXPECT_EQ(Merged(run, c.pixel), c.result) << c.calcMode << ", " << c.colorMode;
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
    FilterRun<MonoImageProcess> run(1, 1, {{}}, {{}});
    for (const auto& c : kCases) {
        run.process.Threshold = c.threshold;
        EXPECT_EQ(Merged(run, c.pixel), (RGBA16{c.level, c.level, c.level, c.pixel.a}))
            << c.threshold;
    }
}

}  // namespace
}  // namespace imgbasic
