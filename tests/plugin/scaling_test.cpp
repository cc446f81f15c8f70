#include "plugin/imgbasic/scaling.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace imgbasic {
namespace {

TEST(Scaling, ComputesTheSizeFromThePercentagesWithoutADialog) {
    struct Case {
        int32_t size, percent, expected;
    };
    constexpr Case kCases[] =
        {
            {3, 50, 1},          {3, 10, 1},       {3, 100, 3},        {5000, 200, 8192},
            {100, -50, 1},       {INT_MIN, -1, 1}, {10000, 100, 8192}, {4000, 819200, 1},
            {65536, 65537, 655},  // wraps to 65536, as the one before to a negative number
        };
    for (const Case& c : kCases) {
        ScalingImageProcess scaling;
        scaling.width = c.size;
        scaling.height = 7;
        scaling.skipDialog = true;
        EXPECT_EQ(scaling.Dialog([] { return false; }), 0);
        EXPECT_EQ(scaling.newWidth, 0) << "the percentages are not asked";
        scaling.RatioSize = true;
        scaling.RatioWidth = c.percent;
        scaling.RatioHeight = 300;
        EXPECT_EQ(scaling.Dialog([] { return true; }), 1);
        EXPECT_EQ(scaling.newWidth, c.expected) << c.size << " at " << c.percent << " %";
        EXPECT_EQ(scaling.newHeight, 21);
    }
}

/// An opaque and a clear pixel, 2 x 1, to 4 x 1.
struct ScalingRun {
    ScalingImageProcess scaling;
    std::vector<RGBA16> src{{100, 200, 300, 0xFF00}, {}};
    std::vector<RGBA16> dst = std::vector<RGBA16>(4, RGBA16{1, 2, 3, 4});
    RECT area{0, 0, 2, 1};
    RECT outRect{-7, -7, -7, -7};
    ExecuteArgs args{};

    ScalingRun() {
        scaling.width = 2;
        scaling.height = 1;
        scaling.newWidth = 4;
        args.dst = dst.data();
        args.outRect = &outRect;
        args.src = src.data();
        args.inRect = &area;
    }

    std::vector<int> Alphas() const { return {dst[0].a, dst[1].a, dst[2].a, dst[3].a}; }
};

TEST(Scaling, AnnouncesAnotherSizeAndAdjustsToIt) {
    ScalingRun run;
    uint32_t width = 0;
    uint32_t height = 0;
    EXPECT_EQ(run.scaling.Phase(0, &width, &height, nullptr, 0, 0, nullptr), 1);
    EXPECT_EQ(width, 4U);
    EXPECT_EQ(height, 1U) << "the source's while it is not set";
    for (const bool changeBrush : {true, false}) {
        run.scaling.ChangeBrush = changeBrush;
        double scale = 5;
        double x = 1.5;
        static_cast<ImageProcess&>(run.scaling).AdjustScale(0, 0, &scale, nullptr);
        EXPECT_EQ(scale, changeBrush ? 2 : 5);
        EXPECT_TRUE(run.scaling.AdjustLocate(0, 9, 9, &x, nullptr));
        EXPECT_EQ(x, 3);
    }
    run.scaling.newWidth = 2;
    EXPECT_EQ(run.scaling.Phase(0, &width, &height, nullptr, 0, 0, nullptr), -1);
    EXPECT_EQ(width, 4U) << "not written";
    ScalingImageProcess batch;
    EXPECT_EQ(batch.BatchPrepare(), 1);
    EXPECT_EQ(batch.ResultWidth(), 512);
    EXPECT_EQ(batch.Phase(0, nullptr, nullptr, nullptr, 0, 0, nullptr), -1);
}

TEST(Scaling, DrawsWithTheKernelAndOptionsChosen) {
    struct Case {
        int32_t interType, boundary;
        bool boundAlpha;
        std::vector<int> alphas;
    };
    const Case cases[] = {
        {0, 0, true, {65280, 65280, 4, 4}},
        {1, 0, true, {65280, 65280, 4, 4}},
        {2, 0, true, {48960, 48960, 16320, 4}},
        {2, 1, false, {65280, 48960, 16320, 4}},
        {2, 1, true, {57600, 48960, 16320, 4}},
        {2, 2, false, {48960, 48960, 16320, 16320}},
        {3, 0, true, {4, 4, 4, 4}},
    };
    for (const Case& c : cases) {
        ScalingRun run;
        run.scaling.InterType = c.interType;
        run.scaling.BoundaryType = c.boundary;
        run.scaling.BoundAlpha = c.boundAlpha;
        run.area.right = INT_MAX;
        EXPECT_TRUE(run.scaling.Execute(run.args));
        EXPECT_EQ(run.outRect.right, 4);
        EXPECT_EQ(run.Alphas(), c.alphas) << "case " << &c - cases;
    }
}

TEST(Scaling, ReportsOrSkipsAsAsked) {
    const std::vector<int> untouched{4, 4, 4, 4};
    ScalingRun run;
    run.args.inRect = nullptr;
    EXPECT_TRUE(run.scaling.Execute(run.args));
    EXPECT_EQ(run.outRect.right, -7) << "no area, no answer";
    run.args.inRect = &run.area;
    run.args.skipPixels = true;
    EXPECT_TRUE(run.scaling.Execute(run.args));
    EXPECT_EQ(run.outRect.right, 4);
    run.args.skipPixels = false;
    run.args.outRect = nullptr;
    run.scaling.newWidth = INT_MIN;
    EXPECT_TRUE(run.scaling.Execute(run.args));
    run.args.src = nullptr;
    run.scaling.newWidth = 4;
    EXPECT_TRUE(run.scaling.Execute(run.args));
    EXPECT_EQ(run.Alphas(), untouched);
}

}  // namespace
}  // namespace imgbasic
