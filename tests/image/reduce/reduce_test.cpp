#include "lib/image/reduce/reduce_bitmap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/median_cut.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/quantize_graduated.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

using Words = std::vector<uint32_t>;
using Indices = std::vector<uint8_t>;

std::unique_ptr<KVBitmap> Bitmap(int32_t width, const Words& pixels) {
    const auto height = static_cast<int32_t>(pixels.size()) / width;
    auto bitmap = std::make_unique<KVBitmap>(width, height);
    std::ranges::copy(pixels, bitmap->Words().begin());
    return bitmap;
}

Words Colors(const ReducePalette& palette) {
    Words words;
    for (const KVColorPalette& entry : palette.entries) {
        words.push_back(entry.Word());
    }
    return words;
}

Indices IndicesOf(const KVBitmap& indexed) {
    Indices indices;
    for (int32_t y = 0; y < indexed.Height(); ++y) {
        const auto row = indexed.IndexRow(y);
        indices.insert(indices.end(), row.begin(), row.end());
    }
    return indices;
}

// (15, 15, 15), a corner of the first entry's cell, is as far from it as any colour there, and just
// as near to the other entry, which wins by the sum of the differences: 25 + 5 + 5.
TEST(Reduce, FindsAnEntryThatTiesAtTheCornerOfACell) {
    ReducePalette palette;
    palette.entries.emplace_back(0xFF000000, 1U);
    palette.entries.emplace_back(0xFF281414, 1U);
    FinishPalette(palette);
    const auto bitmap = Bitmap(3, {0xFF0F0F0F, 0xFF0F0F0E, 0xFF0F0F0F});
    for (const SimdLevel level : {SimdLevel::Scalar, SupportedSimdLevel()}) {
        const ScopedSimdLevel forced(level);
        const auto indexed = MapToIndexed(palette, bitmap.get(), NoDither);
        EXPECT_EQ(IndicesOf(*indexed), (Indices{1, 0, 1}));
    }
}

// An entry of just the colour ends the search, though those behind it have the closer alpha; all
// are equally many cells away, the one by its alpha, the others by their red.
TEST(Reduce, EndsTheSearchAtATransparentEntryOfTheSameColor) {
    ReducePalette palette;
    palette.entries.emplace_back(0x00F0F0F0, 1U);
    for (uint32_t i = 1; i < 256; ++i) {
        palette.entries.emplace_back(0xFF000000 | i << 4, 1U);
    }
    FinishPalette(palette);
    ASSERT_TRUE(palette.grid && palette.alphaMode == AlphaMode::First);
    const Words words{0xFFF0F0F0, 0xFFF1F0F0, 0xFFF0F0F0};
    for (const SimdLevel level : {SimdLevel::Scalar, SupportedSimdLevel()}) {
        const ScopedSimdLevel forced(level);
        for (const auto dither : {NoDither, LargeDiffusion}) {
            const Indices indices =
                IndicesOf(*MapToIndexed(palette, Bitmap(3, words).get(), dither));
            EXPECT_EQ(indices[0], 0);
            EXPECT_NE(indices[1], 0);
            EXPECT_EQ(indices[1], FindNearestInGrid(palette, words[1]));
        }
    }
}

// Means may have a colour that nobody sees; the next step of a gradual reduction counts none.
TEST(Reduce, TakesTransparentColorsOfAStepForColorZero) {
    ReducePalette palette;
    const KVColorPalette counted[] = {{0x00112233, 5}, {0xFF445566, 2}, {0x00332211, 1}};
    ASSERT_TRUE(QuantizeCounted(palette, counted, -2));
    EXPECT_EQ(Colors(palette), (Words{0, 0xFF445566}));
    EXPECT_EQ(palette.entries[0].count, 6U);
}

// One colour in each cell of the lookup, and a palette of which each cell keeps all entries.
TEST(Reduce, FindsTheClosestEntryAlsoWhenTheLookupIsFull) {
    Words everywhere(65536);
    for (uint32_t i = 0; i < everywhere.size(); ++i) {
        everywhere[i] = (i & 0xF) << 4 | (i & 0xF0) << 8 | (i & 0xF00) << 12 | (i & 0xF000) << 16;
    }
    const auto bitmap = Bitmap(256, everywhere);
    for (const auto& [count, find] :
         {std::pair(16U, &FindNearest), std::pair(256U, &FindNearestInGrid)}) {
        ReducePalette palette;
        for (uint32_t i = 0; i < count; ++i) {
            palette.entries.emplace_back(0x80808080 | i % 16, 1U);
        }
        FinishPalette(palette);
        const Indices indices = IndicesOf(*MapToIndexed(palette, bitmap.get(), NoDither));
        for (size_t i = 0; i < everywhere.size(); ++i) {
            const uint32_t color = everywhere[i] >> 24 == 0 ? 0 : everywhere[i];
            ASSERT_EQ(indices[i], find(palette, color)) << std::hex << color;
        }
    }
}

TEST(Reduce, KeepsFewColorsInOrderOfFirstAppearance) {
    const auto bitmap =
        Bitmap(3, {0xFF000009, 0x00123456, 0xFF000009, 0x80000001, 0x00654321, 0xFF000009});
    ReducePalette palette;
    ASSERT_TRUE(QuantizePalette(palette, bitmap.get(), -3));
    EXPECT_EQ(Colors(palette), (Words{0xFF000009, 0, 0x80000001}));
    EXPECT_EQ(palette.entries[0].count, 3U);
    EXPECT_EQ(palette.entries[1].count, 2U);
    EXPECT_EQ(palette.alphaMode, AlphaMode::Axis);
    const auto indexed = ReduceBitmap(bitmap.get(), -3, LargeDiffusion, false);
    EXPECT_EQ(IndicesOf(*indexed), (Indices{0, 1, 0, 2, 1, 0}));
    EXPECT_EQ(indexed->Palette()[2], 0x80000001);
}

// A part at an end needs a thirty-second of the pixels in the last of four passes.
TEST(Reduce, CutsWhatIsRareInTheFourthPassOrNot) {
    for (const auto& [rare, boxes] : {std::pair(40U, 2U), std::pair(20U, 1U)}) {
        std::vector<CoarseColor> colors{{{9, 9, 9, 31}, 0, 1000}, {{9, 9, 8, 31}, 0, rare}};
        EXPECT_EQ(DivideIntoBoxes(colors, 32).boxes.size(), boxes) << rare << " of 1000";
    }
}

TEST(Reduce, DithersAsWorkedOut) {
    ReducePalette palette;
    palette.entries.emplace_back(0xFF000000, 1U);
    palette.entries.emplace_back(0xFFFFFFFF, 1U);
    FinishPalette(palette);
    const auto gray = Bitmap(4, Words(8, 0xFF646464));  // 100, nearer to black
    const std::pair<DitherKind, Indices> cases[] = {
        {NoDither, {0, 0, 0, 0, 0, 0, 0, 0}},
        // 0, 68, 17, 87, and in the second row 102, 34, 119, 51, less 64 are added.
        {OrderedDither, {0, 0, 0, 0, 1, 0, 1, 0}},
        // 100, 100 + 43, 100 - 68, 100 + 43: 7/16 of 100 - 0, 100 - 255, 100 - 0
        {SmallDiffusion, {0, 1, 0, 1}},
        // 100, 100 + 43, 100 - 49, 100 + 22: 7/16 of 100 - 0, 143 - 255, 51 - 0
        {LargeDiffusion, {0, 1, 0, 0}},
    };
    for (const auto& [dither, expected] : cases) {
        Indices indices = IndicesOf(*MapToIndexed(palette, gray.get(), dither));
        indices.resize(expected.size());
        EXPECT_EQ(indices, expected) << "dither " << dither;
    }
}

TEST(Reduce, FailsWithoutPixelsPaletteOrMemory) {
    ReducePalette palette;
    const KVBitmap bitmap(3, 3);
    const KVBitmap indexed(3, 3, 2);
    const KVBitmap empty(0, 3);
    for (const KVBitmap* bad : std::initializer_list<const KVBitmap*>{nullptr, &indexed, &empty}) {
        EXPECT_FALSE(QuantizePalette(palette, bad, -16));
        EXPECT_FALSE(QuantizeGraduated(palette, bad, 16));
        EXPECT_EQ(ReduceBitmap(bad, -16, NoDither, false), nullptr);
    }
    EXPECT_EQ(MapToIndexed(palette, &bitmap, NoDither), nullptr);
    ASSERT_TRUE(QuantizePalette(palette, &bitmap, -16));
    EXPECT_EQ(Colors(palette), Words{0});
    EXPECT_EQ(MapToIndexed(palette, &indexed, NoDither), nullptr);
    for (const int dither : {-1, 4}) {
        EXPECT_EQ(MapToIndexed(palette, &bitmap, dither), nullptr);
    }
    palette.entries.resize(257);
    EXPECT_EQ(MapToIndexed(palette, &bitmap, NoDither), nullptr);
}

TEST(Reduce, GivesUpAtWhicheverBlockMemoryRunsOut) {
    Words noise(400);
    for (size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<uint32_t>(i) * 0x9E3779B1U;
    }
    const auto bitmap = Bitmap(20, noise);
    int blocks = 0;
    const auto reduce = [&] {
        const ScopedBlockLimit limit(blocks++);
        return ReduceBitmap(bitmap.get(), -64, LargeDiffusion, false);
    };
    while (reduce() == nullptr) {
        ASSERT_LT(blocks, 100);
    }
    EXPECT_GT(blocks, 4);
}

}  // namespace
}  // namespace imgbasic
