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
constexpr RECT kArea{1, 1, 4, 3};
constexpr RECT kImage{0, 0, kWidth, kHeight};

struct Case {
    const char* what;
    int32_t target;
    int32_t curSubLayer;
    int32_t layer;
    int32_t subLayer;
    bool result;
    RECT outRect;  ///< kUntouched: not written
    bool pixels;   ///< whether outRect's pixels were processed
    uint32_t resultCode;
};

// The object's current layer is 2.
constexpr Case kCases[] = {
    {"merged: the top item gets the result", 0, -1, 0, -1, true, kImage, true, 0},
    {"merged: later items are used up", 0, -1, 3, -1, true, kUntouched, false, 1},
    {"merged: no layer of a folder", 0, -1, 0, 0, false, kUntouched, false, 0},
    {"merged: also when the current one is in a folder", 0, 1, 2, 1, false, kUntouched, false, 0},
    {"an unknown target means merged", 5, -1, 0, -1, true, kImage, true, 0},
    {"a negative target means merged", -1, -1, 1, -1, true, kUntouched, false, 1},
    {"all: any item", 1, -1, 7, -1, true, kArea, true, 0},
    {"all: any layer of a folder", 1, -1, 7, 3, true, kArea, true, 0},
    {"current: itself", 2, -1, 2, -1, true, kArea, true, 0},
    {"current: another item", 2, -1, 1, -1, true, kUntouched, false, 0},
    {"current: a layer inside it", 2, -1, 2, 0, false, kUntouched, false, 0},
    {"current in a folder: itself", 2, 1, 2, 1, true, kArea, true, 0},
    {"current in a folder: a neighbour", 2, 1, 2, 0, true, kUntouched, false, 0},
    {"current in a folder: the folder", 2, 1, 2, -1, true, kArea, false, 0},
    {"current in a folder: another folder's layer", 2, 1, 1, 1, true, kUntouched, false, 0},
};

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

TEST(Target, SelectsByTypeAndPosition) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.what);
        CopyRun run;
        run.process.TargetType = c.target;
        run.process.curSubLayer = c.curSubLayer;
        EXPECT_EQ(run.Execute(c.layer, c.subLayer, &kArea, MergedResult::Announced), c.result);
        EXPECT_TRUE(Equal(run.outRect, c.outRect));
        EXPECT_EQ(run.resultCode, c.resultCode);
        const bool fromMerged = c.pixels && Equal(c.outRect, kImage);
        EXPECT_EQ(run.resultKind, fromMerged ? 1U : 0U);
        for (size_t i = 0; i < kPixels; ++i) {
            const RGBA16 source = fromMerged ? run.merged[i] : run.src[i];
            EXPECT_EQ(run.dst[i], c.pixels && Contains(c.outRect, i) ? source : RGBA16{}) << i;
        }
    }
}

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
