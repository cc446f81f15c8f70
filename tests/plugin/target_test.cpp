#include "plugin/imgbasic/target.h"

#include <algorithm>
#include <climits>

#include "plugin/imgbasic/nega.h"
#include "tests/plugin/filter_run.h"

namespace imgbasic {
namespace {

constexpr int32_t kWidth = 5;
constexpr int32_t kHeight = 4;
constexpr size_t kPixels = size_t{kWidth} * kHeight;
constexpr RECT kImage{0, 0, kWidth, kHeight};

bool Contains(const RECT& rect, size_t index) {
    const auto x = static_cast<int32_t>(index) % kWidth;
    const auto y = static_cast<int32_t>(index) / kWidth;
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

/// A filter whose rows are copied: the merged image is all 1, the layer all 2.
struct CopyRun : FilterRun<NegaImageProcess> {
    CopyRun() : FilterRun(kWidth, kHeight, Filled(2), Filled(1)) { process.curLayer = 2; }

    static std::vector<RGBA16> Filled(uint16_t value) {
        return {kPixels, RGBA16{value, value, value, value}};
    }

    bool Execute(int32_t layer, int32_t subLayer, const RECT* area, MergedResult announce) {
        return ExecuteOnTarget(process, Args(layer, subLayer, area), announce,
                               [](RGBA16* to, const RGBA16* from, size_t count, Store) {
                                   std::copy_n(from, count, to);
                               });
    }
};

TEST(Target, LeavesOutputsAloneWithoutARectangleAndKeepsASilentResultSilent) {
    for (const int32_t target : {1, 2}) {
        CopyRun run;
        run.process.TargetType = target;
        EXPECT_TRUE(run.Execute(2, -1, nullptr, MergedResult::Announced));
        EXPECT_TRUE(Equal(run.outRect, kUntouched));
    }
    CopyRun silent;
    EXPECT_TRUE(silent.Execute(-3, -1, nullptr, MergedResult::Silent));
    EXPECT_TRUE(Equal(silent.outRect, kImage));
    EXPECT_EQ(silent.resultKind, 0U);
    silent.process.mergedImage = nullptr;
    EXPECT_FALSE(silent.Execute(0, -1, nullptr, MergedResult::Silent));
}

TEST(Target, NeverLeavesTheBuffersButReportsTheHostsRectangle) {
    constexpr RECT kHostile[] = {
        {-3, -2, 2, 2},
        {3, 2, 100, 100},
        {4, 3, 1, 1},
        {2, 3, 2, 3},
        {INT_MIN, INT_MIN, INT_MAX, INT_MAX},
        {INT_MAX, INT_MAX, INT_MIN, INT_MIN},
        {INT_MAX - 1, 0, INT_MAX, kHeight},
        {INT_MIN, 0, INT_MIN + 1, 1},
    };
    for (const RECT& area : kHostile) {
        CopyRun run;
        run.process.TargetType = AllLayers;
        EXPECT_TRUE(run.Execute(0, -1, &area, MergedResult::Silent));
        EXPECT_TRUE(Equal(run.outRect, area));
        for (size_t i = 0; i < kPixels; ++i) {
            EXPECT_EQ(run.dst[i], Contains(area, i) ? run.src[i] : RGBA16{}) << i;
        }
    }
    for (const int32_t broken : {0, -1, INT_MIN}) {
        CopyRun run;
        run.process.TargetType = AllLayers;
        run.process.width = broken;
        EXPECT_TRUE(run.Execute(0, -1, &kImage, MergedResult::Silent));
        EXPECT_EQ(run.dst, std::vector<RGBA16>(kPixels));
    }
}

TEST(Target, PointFiltersReportOnlyTheCurrentLayerAsInside) {
    CopyRun run;
    run.process.curSubLayer = 1;
    EXPECT_FALSE(run.process.AdjustLocate(0, 9, 9, nullptr, nullptr));
    run.process.TargetType = CurrentLayer;
    EXPECT_TRUE(run.process.AdjustLocate(0, 9, 1, nullptr, nullptr));
    EXPECT_TRUE(run.process.AdjustLocate(0, 2, 0, nullptr, nullptr));
    EXPECT_FALSE(run.process.AdjustLocate(0, 2, 1, nullptr, nullptr));
}

}  // namespace
}  // namespace imgbasic
