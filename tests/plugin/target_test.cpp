#include "plugin/imgbasic/target.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "plugin/imgbasic/nega.h"

namespace imgbasic {
namespace {

constexpr int32_t kWidth = 5;
constexpr int32_t kHeight = 4;
constexpr size_t kPixels = size_t{kWidth} * kHeight;
constexpr RECT kUntouched{-7, -7, -7, -7};
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

bool Equal(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

bool Contains(const RECT& rect, size_t index) {
    const auto x = static_cast<int32_t>(index) % kWidth;
    const auto y = static_cast<int32_t>(index) / kWidth;
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

/// A run over exactly sized buffers, so that the address sanitizer sees any step outside.
struct FilterRun {
    NegaImageProcess nega;
    std::vector<RGBA16> merged = std::vector<RGBA16>(kPixels, RGBA16{1, 1, 1, 1});
    std::vector<RGBA16> src = std::vector<RGBA16>(kPixels, RGBA16{2, 2, 2, 2});
    std::vector<RGBA16> dst = std::vector<RGBA16>(kPixels);
    RECT outRect = kUntouched;
    uint32_t resultCode = 0;
    uint32_t resultKind = 0;

    FilterRun() {
        nega.width = kWidth;
        nega.height = kHeight;
        nega.curLayer = 2;
        nega.mergedImage = merged.data();
    }

    bool Execute(int32_t layer, int32_t subLayer, const RECT* area, MergedResult announce) {
        ExecuteArgs args{};
        args.layer = layer;
        args.subLayer = subLayer;
        args.dst = dst.data();
        args.outRect = &outRect;
        args.src = src.data();
        args.inRect = area;
        args.resultCode = &resultCode;
        args.resultKind = &resultKind;
        return ExecuteOnTarget(nega, args, announce,
                               [](RGBA16* to, const RGBA16* from, size_t count, Store) {
                                   std::copy_n(from, count, to);
                               });
    }
};

TEST(Target, SelectsByTypeAndPosition) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.what);
        FilterRun run;
        run.nega.TargetType = c.target;
        run.nega.curSubLayer = c.curSubLayer;
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
        FilterRun run;
        run.nega.TargetType = target;
        EXPECT_TRUE(run.Execute(2, -1, nullptr, MergedResult::Announced));
        EXPECT_TRUE(Equal(run.outRect, kUntouched));
    }
    FilterRun silent;
    EXPECT_TRUE(silent.Execute(-3, -1, nullptr, MergedResult::Silent));
    EXPECT_TRUE(Equal(silent.outRect, kImage));
    EXPECT_EQ(silent.resultKind, 0U);
    silent.nega.mergedImage = nullptr;
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
        FilterRun run;
        run.nega.TargetType = AllLayers;
        EXPECT_TRUE(run.Execute(0, -1, &area, MergedResult::Silent));
        EXPECT_TRUE(Equal(run.outRect, area));
        for (size_t i = 0; i < kPixels; ++i) {
            EXPECT_EQ(run.dst[i], Contains(area, i) ? run.src[i] : RGBA16{}) << i;
        }
    }
    for (const int32_t broken : {0, -1, INT_MIN}) {
        FilterRun run;
        run.nega.TargetType = AllLayers;
        run.nega.width = broken;
        EXPECT_TRUE(run.Execute(0, -1, &kImage, MergedResult::Silent));
        EXPECT_EQ(run.dst, std::vector<RGBA16>(kPixels));
    }
}

TEST(Target, PointFiltersReportOnlyTheCurrentLayerAsInside) {
    FilterRun run;
    run.nega.curSubLayer = 1;
    EXPECT_FALSE(run.nega.AdjustLocate(0, 9, 9, nullptr, nullptr));
    run.nega.TargetType = CurrentLayer;
    EXPECT_TRUE(run.nega.AdjustLocate(0, 9, 1, nullptr, nullptr));
    EXPECT_TRUE(run.nega.AdjustLocate(0, 2, 0, nullptr, nullptr));
    EXPECT_FALSE(run.nega.AdjustLocate(0, 2, 1, nullptr, nullptr));
}

}  // namespace
}  // namespace imgbasic
