#include <climits>
#include <new>
#include <utility>

#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"
#include "tests/image/kernel_test.h"
#include "tests/image/scarce_memory.h"

// Rules and visits that the record's pictures do not spell out, on a layer of one pixel.

namespace imgbasic {
namespace {

constexpr RECT kPixel{0, 0, 1, 1};

template <typename Process>
struct OnePixel {
    Process process;
    RGBA16 src;
    RGBA16 dst{};
    RECT outRect{};
    ExecuteArgs args{};

    explicit OnePixel(RGBA16 pixel) : src(pixel) {
        process.width = process.height = 1;
        process.TargetType = AllLayers;
        args.subLayer = -1;
        args.dst = &dst;
        args.outRect = &outRect;
        args.src = &src;
        args.inRect = &kPixel;
    }

    bool Execute() { return process.Execute(args); }
};

// Rounding to 8 bits is up from 0x81; what exceeds 8 bits is carried, never cut off.
TEST(ColReduce, CarriesAChannelThatRoundsTo256) {
    const std::pair<RGBA16, RGBA16> cases[] = {
        {{0x1280, 0x1281, 0x0000, 0x8000}, {0x1200, 0x1300, 0x0000, 0x8000}},
        {{0x1000, 0x2000, 0xFF81, 0x8000}, {0x1000, 0x2100, 0x0000, 0x8000}},
        {{0xFF81, 0x2000, 0x3000, 0x8000}, {0x0000, 0x2000, 0x3000, 0x8100}},
        {{0x1000, 0x2000, 0x3000, 0xFF81}, {0, 0, 0, 0}},
    };
    for (const auto& [from, to] : cases) {
        OnePixel<ReduceColorImageProcess> visit(from);
        EXPECT_TRUE(visit.Execute());
        EXPECT_EQ(visit.dst, to);
    }
}

TEST(ColReduce, ForgetsTheSharedPaletteWhenTheNextCannotBeBuilt) {
    OnePixel<ReduceColorImageProcess> visit({0x1100, 0x2200, 0x3300, kFullScale});
    visit.process.SharePalette = true;
    EXPECT_TRUE(visit.Execute());
    {
        const ScopedAllocationLimit onlyForTheRow(1);
        EXPECT_THROW(visit.Execute(), std::bad_alloc);
    }
    visit.src.r = 0x5500;
    visit.args.layer = 1;
    EXPECT_TRUE(visit.Execute());
    EXPECT_EQ(visit.dst, visit.src);
}

TEST(Target, NeedsPixelsAndTheMergedImageThatItIsAimedAt) {
    for (const int32_t broken : {0, -1, INT_MIN}) {
        OnePixel<NegaImageProcess> visit({1, 2, 3, kFullScale});
        visit.process.width = broken;
        EXPECT_TRUE(visit.Execute());
        EXPECT_EQ(visit.dst, RGBA16{});
        visit.process.TargetType = MergedImage;
        EXPECT_FALSE(visit.Execute());
    }
}

TEST(Scaling, ReportsItsSizeAloneWhenPixelsAreSkipped) {
    OnePixel<ScalingImageProcess> visit({1, 2, 3, kFullScale});
    visit.args.skipPixels = true;
    EXPECT_TRUE(visit.Execute());
    EXPECT_EQ(visit.outRect.right, 1);
    EXPECT_EQ(visit.dst, RGBA16{});
    visit.args.skipPixels = false;
    visit.args.outRect = nullptr;
    EXPECT_TRUE(visit.Execute());
    EXPECT_EQ(visit.dst, visit.src);
}

TEST(Scaling, ComputesTheSizeFromThePercentagesWithoutADialog) {
    const struct {
        int32_t size, percent, expected;
    } cases[] = {
        {3, 50, 1},    {3, 10, 1},        {5000, 200, 8192},   {10000, 100, 8192},
        {100, -50, 1}, {4000, 819200, 1}, {65536, 65537, 655},  // wraps to 65536, as the one before
                                                                // to a negative number
    };
    for (const auto& c : cases) {
        ScalingImageProcess scaling;
        scaling.width = c.size;
        scaling.skipDialog = true;
        EXPECT_EQ(scaling.Dialog([] { return false; }), 0);
        EXPECT_EQ(scaling.newWidth, 0) << "the percentages are not asked";
        scaling.RatioSize = true;
        scaling.RatioWidth = c.percent;
        EXPECT_EQ(scaling.Dialog([] { return true; }), 1);
        EXPECT_EQ(scaling.newWidth, c.expected) << c.size << " at " << c.percent << " %";
    }
}

}  // namespace
}  // namespace imgbasic
