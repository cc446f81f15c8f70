#include "plugin/imgbasic/scaling.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace imgbasic {
namespace {

constexpr RECT kUntouched{-7, -7, -7, -7};
constexpr RGBA16 kGuard{1, 2, 3, 4};

int applied = 0;

bool Agree() {
    ++applied;
    return true;
}

bool Refuse() {
    return false;
}

TEST(Scaling, ComputesTheSizeFromThePercentagesWithoutADialog) {
    struct Case {
        int32_t size;
        int32_t percent;
        int32_t expected;
    };
    constexpr Case kCases[] = {
        {3, 50, 1},          {3, 10, 1},
        {3, 100, 3},         {5000, 200, 8192},
        {100, -50, 1},       {4000, 819200, 1},  // 3276800000 wraps below zero
        {65536, 65537, 655},                     // 2^32 + 65536 wraps to 65536
        {INT_MIN, -1, 1},    {INT_MAX, INT_MAX, 1},
        {10000, 100, 8192},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.size << " at " << c.percent << " %");
        ScalingImageProcess scaling;
        scaling.width = c.size;
        scaling.height = 7;
        scaling.skipDialog = true;
        scaling.RatioSize = true;
        scaling.RatioWidth = c.percent;
        scaling.RatioHeight = 300;
        applied = 0;
        EXPECT_EQ(scaling.Dialog(Agree), 1);
        EXPECT_EQ(applied, 1);
        EXPECT_EQ(scaling.newWidth, c.expected);
        EXPECT_EQ(scaling.newHeight, 21);
    }
    ScalingImageProcess absolute;
    absolute.skipDialog = true;
    absolute.newWidth = 9;
    absolute.RatioWidth = 300;
    EXPECT_EQ(absolute.Dialog(Refuse), 0);
    EXPECT_EQ(absolute.newWidth, 9) << "the percentages are not asked";
}

TEST(Scaling, PhaseAnnouncesOnlyAnotherSize) {
    struct Case {
        int32_t newWidth;
        int32_t newHeight;
        int result;
        uint32_t width;
        uint32_t height;
    };
    constexpr Case kCases[] = {
        {0, 0, -1, 77, 77}, {30, 20, -1, 77, 77}, {31, 20, 1, 31, 20},
        {30, 1, 1, 30, 1},  {15, 0, 1, 15, 20},
    };
    for (const Case& c : kCases) {
        ScalingImageProcess scaling;
        scaling.width = 30;
        scaling.height = 20;
        scaling.newWidth = c.newWidth;
        scaling.newHeight = c.newHeight;
        uint32_t width = 77;
        uint32_t height = 77;
        EXPECT_EQ(scaling.Phase(0, &width, &height, nullptr, 0, 0, nullptr), c.result);
        EXPECT_EQ(width, c.width);
        EXPECT_EQ(height, c.height);
    }
    ScalingImageProcess batch;
    EXPECT_EQ(batch.BatchPrepare(), 1);
    EXPECT_EQ(batch.width, 512);
    EXPECT_EQ(batch.Phase(0, nullptr, nullptr, nullptr, 0, 0, nullptr), -1);
}

TEST(Scaling, AdjustsBrushesOnRequestAndPointsAlways) {
    ScalingImageProcess scaling;
    scaling.width = 4;
    scaling.height = 3;
    scaling.newWidth = 10;
    scaling.newHeight = 1;
    for (const bool changeBrush : {true, false}) {
        scaling.ChangeBrush = changeBrush;
        double scaleX = 5;
        double scaleY = 6;
        ImageProcess& base = scaling;
        base.AdjustScale(0, 0, &scaleX, &scaleY);
        EXPECT_EQ(scaleX, changeBrush ? 2.5 : 5);
        EXPECT_EQ(scaleY, changeBrush ? 1.0 / 3 : 6);
        double x = 1.5;
        double y = 0.1;
        EXPECT_TRUE(scaling.AdjustLocate(0, 9, 9, &x, &y));
        EXPECT_EQ(x, 3.75);
        EXPECT_EQ(y, 0.1 / 3);
    }
    scaling.ChangeBrush = true;
    scaling.AdjustScale(0, 0, nullptr, nullptr);
    EXPECT_TRUE(scaling.AdjustLocate(0, 0, 0, nullptr, nullptr));
}

struct ScalingRun {
    ScalingImageProcess scaling;
    std::vector<RGBA16> src;
    std::vector<RGBA16> dst;
    RECT area{0, 0, 2, 1};
    RECT outRect = kUntouched;
    ExecuteArgs args{};

    /// An opaque and a clear pixel, to 4 x 1.
    ScalingRun() : src{{100, 200, 300, 0xFF00}, {0, 0, 0, 0}}, dst(4, kGuard) {
        scaling.width = 2;
        scaling.height = 1;
        scaling.newWidth = 4;
        scaling.newHeight = 1;
        args.dst = dst.data();
        args.outRect = &outRect;
        args.src = src.data();
        args.inRect = &area;
    }

    bool Reported() const {
        return outRect.left == 0 && outRect.top == 0 && outRect.right == 4 && outRect.bottom == 1;
    }
    uint16_t Alpha(size_t i) const { return dst[i].a; }
};

TEST(Scaling, DrawsWithTheKernelAndOptionsChosen) {
    struct Case {
        int32_t interType;
        int32_t boundary;
        bool boundAlpha;
        uint16_t alphas[4];
    };
    constexpr uint16_t kKept = kGuard.a;
    // A row alone is at the upper and the lower boundary, too, but always centred on itself.
    constexpr Case kCases[] = {
        {0, 0, true, {0xFF00, 0xFF00, kKept, kKept}}, {1, 0, true, {0xFF00, 0xFF00, kKept, kKept}},
        {2, 0, true, {48960, 48960, 16320, kKept}},   {2, 1, false, {0xFF00, 48960, 16320, kKept}},
        {2, 1, true, {57600, 48960, 16320, kKept}},   {2, 2, false, {48960, 48960, 16320, 16320}},
        {3, 0, true, {kKept, kKept, kKept, kKept}},   {-1, 0, true, {kKept, kKept, kKept, kKept}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.interType << ", " << c.boundary);
        ScalingRun run;
        run.scaling.InterType = c.interType;
        run.scaling.BoundaryType = c.boundary;
        run.scaling.BoundAlpha = c.boundAlpha;
        EXPECT_TRUE(run.scaling.Execute(run.args));
        EXPECT_TRUE(run.Reported());
        for (size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(run.Alpha(i), c.alphas[i]) << i;
        }
    }
}

TEST(Scaling, ReportsOrSkipsAsAsked) {
    const std::vector<RGBA16> untouched(4, kGuard);
    ScalingRun skip;
    skip.args.skipPixels = true;
    EXPECT_TRUE(skip.scaling.Execute(skip.args));
    EXPECT_TRUE(skip.Reported());
    EXPECT_EQ(skip.dst, untouched);

    ScalingRun noArea;
    noArea.args.inRect = nullptr;
    EXPECT_TRUE(noArea.scaling.Execute(noArea.args));
    EXPECT_EQ(noArea.outRect.left, kUntouched.left);
    EXPECT_EQ(noArea.dst, untouched);

    ScalingRun hostile;
    hostile.area = {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
    hostile.args.outRect = nullptr;
    hostile.scaling.InterType = 0;
    EXPECT_TRUE(hostile.scaling.Execute(hostile.args));
    EXPECT_EQ(hostile.Alpha(1), 0xFF00) << "clipped to the image";

    for (const int32_t broken : {-4, INT_MIN}) {
        ScalingRun run;
        run.scaling.newWidth = broken;
        EXPECT_TRUE(run.scaling.Execute(run.args));
        run.scaling.width = broken;
        EXPECT_TRUE(run.scaling.Execute(run.args));
        EXPECT_EQ(run.dst, untouched);
    }
}

}  // namespace
}  // namespace imgbasic
