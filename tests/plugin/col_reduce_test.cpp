#include "plugin/imgbasic/col_reduce.h"

#include <new>
#include <utility>

#include "tests/image/kernel_test.h"
#include "tests/image/scarce_memory.h"
#include "tests/plugin/filter_run.h"

namespace imgbasic {
namespace {

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
    constexpr RECT kImage{0, 0, 1, 1};
    for (const auto& [from, to] : cases) {
        FilterRun<ReduceColorImageProcess> run(1, 1, {from}, {});
        run.process.TargetType = AllLayers;
        run.process.DitherType = 0;
        run.process.ReduceColor = 2;
        EXPECT_TRUE(run.process.Execute(run.Args(0, -1, &kImage)));
        EXPECT_EQ(run.dst[0], to);
    }
}

TEST(ColReduce, ForgetsTheSharedPaletteWhenTheNextCannotBeBuilt) {
    constexpr RECT kImage{0, 0, 1, 1};
    constexpr RGBA16 kOther{0x5500, 0x6600, 0x7700, kFullScale};
    FilterRun<ReduceColorImageProcess> run(1, 1, {{0x1100, 0x2200, 0x3300, kFullScale}}, {});
    run.process.TargetType = AllLayers;
    run.process.SharePalette = true;
    EXPECT_TRUE(run.process.Execute(run.Args(0, -1, &kImage)));
    {
        const ScopedAllocationLimit onlyForTheRow(1);
        EXPECT_THROW(run.process.Execute(run.Args(0, -1, &kImage)), std::bad_alloc);
    }
    run.src = {kOther};
    EXPECT_TRUE(run.process.Execute(run.Args(1, -1, &kImage)));
    EXPECT_EQ(run.dst[0], kOther);
}

TEST(ColReduce, NeedsTheMergedImageThatItIsAimedAt) {
    FilterRun<ReduceColorImageProcess> run(1, 1, {{}}, {});
    run.process.mergedImage = nullptr;
    EXPECT_FALSE(run.process.Execute(run.Args(0, -1, nullptr)));
}

}  // namespace
}  // namespace imgbasic
