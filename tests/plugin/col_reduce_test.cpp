#include "plugin/imgbasic/col_reduce.h"

#include <algorithm>
#include <set>
#include <utility>

#include "lib/base/zeroed_block.h"
#include "tests/plugin/filter_run.h"

namespace imgbasic {
namespace {

constexpr int32_t kWidth = 6;
constexpr int32_t kHeight = 4;
constexpr size_t kPixels = size_t{kWidth} * kHeight;
constexpr RECT kImage{0, 0, kWidth, kHeight};

RGBA16 Gray(int level) {
    const auto value = static_cast<uint16_t>(level << 8);
    return {value, value, value, kFullScale};
}

std::vector<RGBA16> Ramp(int first, int step) {
    std::vector<RGBA16> pixels;
    for (size_t i = 0; i < kPixels; ++i) {
        pixels.push_back(Gray(first + step * static_cast<int>(i)));
    }
    return pixels;
}

/// The current layer is 0; the layer is a ramp of greys from 0, the merged image one from 120.
struct ReduceRun : FilterRun<ReduceColorImageProcess> {
    explicit ReduceRun(int32_t target) : FilterRun(kWidth, kHeight, Ramp(0, 5), Ramp(120, 5)) {
        process.TargetType = target;
        process.DitherType = 0;
    }

    bool Visit(int32_t layer, int32_t subLayer, const RECT* area) {
        std::ranges::fill(dst, RGBA16{});
        return process.Execute(Args(layer, subLayer, area));
    }

    std::set<int> Grays() const {
        std::set<int> grays;
        for (const RGBA16& pixel : dst) {
            grays.insert(pixel.a == 0 ? -1 : pixel.r >> 8);
        }
        grays.erase(-1);
        return grays;
    }
};

TEST(ColReduce, SharesTheTopItemsPalette) {
    const RECT top{0, 0, kWidth, 1};
    const std::set<int> topGrays{0, 5, 10, 15, 20, 25};
    for (const bool graduate : {false, true}) {
        ReduceRun all(AllLayers);
        all.process.SharePalette = true;
        all.process.GraduateReduce = graduate;
        ASSERT_TRUE(all.Visit(0, -1, &top));
        EXPECT_EQ(all.Grays(), topGrays);
        ASSERT_TRUE(all.Visit(0, 0, &kImage));
        EXPECT_EQ(all.Grays(), topGrays) << "a layer inside the top item chooses none";
        ASSERT_TRUE(all.Visit(1, -1, &kImage));
        EXPECT_EQ(all.Grays(), topGrays);
        EXPECT_EQ(all.dst[kPixels - 1], Gray(25));
        all.process.SharePalette = false;
        ASSERT_TRUE(all.Visit(1, -1, &kImage));
        EXPECT_NE(all.Grays(), topGrays);
    }
}

TEST(ColReduce, FailsWithoutMergedImageOrMemory) {
    ReduceRun run(MergedImage);
    run.process.mergedImage = nullptr;
    EXPECT_FALSE(run.Visit(0, -1, nullptr));
    ReduceRun shared(AllLayers);
    shared.process.SharePalette = true;
    ASSERT_TRUE(shared.Visit(0, -1, &kImage));
    {
        const ScopedBlockLimit limit(1);
        EXPECT_FALSE(shared.Visit(0, -1, &kImage));
    }
    shared.process.ReduceColor = 256;
    ASSERT_TRUE(shared.Visit(1, -1, &kImage));
    EXPECT_EQ(shared.Grays().size(), kPixels) << "the failed build left a palette behind";
}

// Rounding to 8 bits is up from 0x81; what exceeds 8 bits is carried, never cut off.
TEST(ColReduce, CarriesAChannelThatRoundsTo256) {
    const std::pair<RGBA16, RGBA16> cases[] = {
        {{0x1280, 0x1281, 0x0000, 0x8000}, {0x1200, 0x1300, 0x0000, 0x8000}},
        {{0x1000, 0x2000, 0xFF81, 0x8000}, {0x1000, 0x2100, 0x0000, 0x8000}},
        {{0x1000, 0xFFFF, 0x3000, 0x8000}, {0x1100, 0x0000, 0x3000, 0x8000}},
        {{0xFF81, 0x2000, 0x3000, 0x8000}, {0x0000, 0x2000, 0x3000, 0x8100}},
        {{0x1000, 0x2000, 0x3000, 0xFF81}, {0, 0, 0, 0}},
        {{0xFF81, 0xFFFF, 0xFF90, 0xFF80}, {0, 0, 0, 0}},
    };
    for (const auto& [from, to] : cases) {
        ReduceRun run(AllLayers);
        run.process.ReduceColor = 2;
        std::ranges::fill(run.src, from);
        ASSERT_TRUE(run.Visit(0, -1, &kImage));
        EXPECT_EQ(run.dst, std::vector<RGBA16>(kPixels, to));
    }
}

}  // namespace
}  // namespace imgbasic
