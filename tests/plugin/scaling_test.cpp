#include "plugin/imgbasic/scaling.h"

#include <climits>

#include "tests/plugin/filter_run.h"

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

TEST(Scaling, ReportsOrSkipsAsAsked) {
    FilterRun<ScalingImageProcess> run(2, 1, {{100, 200, 300, 0xFF00}, {}, {}, {}}, {});
    run.process.newWidth = 4;
    constexpr RECT kArea{0, 0, 2, 1};
    ExecuteArgs args = run.Args(0, -1, nullptr);
    EXPECT_TRUE(run.process.Execute(args));
    EXPECT_TRUE(Equal(run.outRect, kUntouched)) << "no area, no answer";
    args.inRect = &kArea;
    args.skipPixels = true;
    EXPECT_TRUE(run.process.Execute(args));
    EXPECT_EQ(run.outRect.right, 4);
    args.skipPixels = false;
    args.outRect = nullptr;
    run.process.newWidth = INT_MIN;
    EXPECT_TRUE(run.process.Execute(args));
    args.src = nullptr;
    run.process.newWidth = 4;
    EXPECT_TRUE(run.process.Execute(args));
    EXPECT_EQ(run.dst, std::vector<RGBA16>(4));
    args.src = run.src.data();
    EXPECT_TRUE(run.process.Execute(args));
    EXPECT_NE(run.dst, std::vector<RGBA16>(4));
}

}  // namespace
}  // namespace imgbasic
