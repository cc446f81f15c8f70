#include "plugin/imgbasic/col_reduce.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <set>
#include <vector>

#include "lib/base/zeroed_block.h"

namespace imgbasic {
namespace {

constexpr int32_t kWidth = 6;
constexpr int32_t kHeight = 4;
constexpr size_t kPixels = size_t{kWidth} * kHeight;
constexpr RECT kArea{1, 1, 5, 3};
constexpr RECT kImage{0, 0, kWidth, kHeight};
constexpr RECT kUntouched{-7, -7, -7, -7};

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

/// Runs over exactly sized buffers, so that the address sanitizer sees any step outside. The
/// current layer is 0; the layer is a ramp of grays from 0, the merged image one from 120.
struct FilterRun {
    ReduceColorImageProcess process;
    std::vector<RGBA16> src = Ramp(0, 5);
    std::vector<RGBA16> merged = Ramp(120, 5);
    std::vector<RGBA16> dst = std::vector<RGBA16>(kPixels);
    RECT outRect = kUntouched;

    explicit FilterRun(int32_t target) {
        process.width = kWidth;
        process.height = kHeight;
        process.TargetType = target;
        process.DitherType = 0;
        process.mergedImage = merged.data();
    }

    bool Visit(int32_t layer, int32_t subLayer, const RECT* area) {
        outRect = kUntouched;
        std::ranges::fill(dst, RGBA16{});
        ExecuteArgs args{};
        args.layer = layer;
        args.subLayer = subLayer;
        args.dst = dst.data();
        args.outRect = &outRect;
        args.src = src.data();
        args.inRect = area;
        return process.Execute(args);
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

bool Equal(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// Which items are meant is the matter of all filters; this is what this one does with them.
TEST(ColReduce, WritesInsideItsRectangleAndTheImageOnly) {
    struct Case {
        int32_t target;
        int32_t layer;
        int32_t subLayer;
        RECT area;
        RECT outRect;
        ptrdiff_t written;
        bool result;
    };
    constexpr RECT kOutside{kWidth, 0, INT_MAX, INT_MAX};
    constexpr RECT kAround{INT_MIN, -1, INT_MAX, 2};
    constexpr Case kCases[] = {
        {MergedImage, 0, -1, kArea, kImage, kWidth * kHeight, true},
        {MergedImage, 0, 0, kArea, kUntouched, 0, false},
        {AllLayers, 3, 2, kArea, kArea, 8, true},
        {AllLayers, 3, 2, kAround, kAround, 12, true},
        {AllLayers, 0, -1, kOutside, kOutside, 0, true},
        {CurrentLayer, 0, 1, kArea, kUntouched, 0, false},
    };
    for (const bool share : {false, true}) {
        for (const Case& c : kCases) {
            FilterRun run(c.target);
            run.process.SharePalette = share;
            EXPECT_EQ(run.Visit(c.layer, c.subLayer, &c.area), c.result);
            EXPECT_TRUE(Equal(run.outRect, c.outRect));
            EXPECT_EQ(std::ranges::count(run.dst, kFullScale, &RGBA16::a), c.written);
        }
    }
}

TEST(ColReduce, SharesTheTopItemsPalette) {
    const RECT top{0, 0, kWidth, 1};
    const std::set<int> topGrays{0, 5, 10, 15, 20, 25};
    for (const bool graduate : {false, true}) {
        FilterRun all(AllLayers);
        all.process.SharePalette = true;
        all.process.GraduateReduce = graduate;
        ASSERT_TRUE(all.Visit(0, -1, &top));
        EXPECT_EQ(all.Grays(), topGrays);
        ASSERT_TRUE(all.Visit(1, -1, &kImage));
        EXPECT_EQ(all.Grays(), topGrays);
        EXPECT_EQ(all.dst[kPixels - 1], Gray(25));
        all.process.SharePalette = false;
        ASSERT_TRUE(all.Visit(1, -1, &kImage));
        EXPECT_NE(all.Grays(), topGrays);
    }
    FilterRun merged(MergedImage);
    merged.process.SharePalette = true;
    ASSERT_TRUE(merged.Visit(0, -1, &top));
    EXPECT_EQ(merged.Grays(), std::set<int>{25});
    merged.process.Dispose();
    ASSERT_TRUE(merged.Visit(0, -1, nullptr));
    EXPECT_GT(merged.Grays().size(), 1U);

    // Every visit of the top item builds anew, also when another one is current.
    FilterRun current(CurrentLayer);
    current.process.SharePalette = true;
    current.process.curLayer = 1;
    const RECT second{0, 1, 2, 2};
    for (const RECT& area : {top, second}) {
        ASSERT_TRUE(current.Visit(0, -1, &area));
        EXPECT_TRUE(current.Grays().empty());
    }
    ASSERT_TRUE(current.Visit(1, -1, &kImage));
    EXPECT_EQ(current.Grays(), (std::set<int>{30, 35}));
}

TEST(ColReduce, BoundsItsOptions) {
    for (const auto& [limit, colors] : {std::pair{-5, 1U}, {0, 1U}, {3, 3U}, {999, 24U}}) {
        FilterRun run(MergedImage);
        run.process.ReduceColor = limit;
        ASSERT_TRUE(run.Visit(0, -1, nullptr));
        EXPECT_EQ(run.Grays().size(), colors) << limit;
    }
    for (const int32_t dither : {-1, 4}) {
        FilterRun run(MergedImage);
        run.process.DitherType = dither;
        EXPECT_FALSE(run.Visit(0, -1, nullptr));
    }
}

TEST(ColReduce, FailsWithoutMergedImageOrMemory) {
    FilterRun run(MergedImage);
    run.process.mergedImage = nullptr;
    EXPECT_FALSE(run.Visit(0, -1, nullptr));
    FilterRun shared(AllLayers);
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
        FilterRun run(AllLayers);
        run.process.ReduceColor = 2;
        std::ranges::fill(run.src, from);
        ASSERT_TRUE(run.Visit(0, -1, &kImage));
        EXPECT_EQ(run.dst, std::vector<RGBA16>(kPixels, to));
    }
}

}  // namespace
}  // namespace imgbasic
