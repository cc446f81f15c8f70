#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "lib/base/zeroed_block.h"
#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/quantize_graduated.h"
#include "lib/image/reduce/reduce_bitmap.h"
#include "lib/image/simd/simd.h"
#include "tests/image/reduce/simple_reduce.h"

namespace imgbasic {
namespace {

constexpr int kKinds = 7;

/// A picture of one of kKinds kinds, at most 26 pixels long either way, some only 1.
SimpleImage MakeImage(uint32_t seed) {
    std::mt19937 random(seed);
    const auto below = [&](uint32_t limit) { return static_cast<int>(random() % limit); };
    SimpleImage image{1 + below(26), 1 + below(26), {}};
    int& side = below(2) == 0 ? image.width : image.height;
    side = below(4) == 0 ? 1 : side;
    const uint32_t kind = seed % kKinds;
    const uint32_t base = static_cast<uint32_t>(random());
    const auto grain = 1 + static_cast<uint32_t>(below(30));
    std::vector<uint32_t> few(1 + random() % 300);
    for (uint32_t& color : few) {
        color = static_cast<uint32_t>(random()) | (below(3) == 0 ? 0 : 0xFF000000);
    }
    const auto wave = [&](int at, uint32_t channel) {
        const double angle = at * 0.1 + (base >> (8 * channel) & 63);
        return static_cast<uint32_t>(110 + 90 * std::sin(angle) + below(grain));
    };
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const uint32_t photo = wave(x, 0) | wave(y, 1) << 8 | wave(x + y, 2) << 16;
            const uint32_t alpha = wave(x + 2 * y, 3);
            const uint32_t soft = alpha < 60 ? 0 : std::min(2 * alpha, 255U);
            const uint32_t colors[kKinds] = {
                photo | 0xFF000000,                         // opaque
                photo | alpha << 24,                        // translucent
                photo | soft << 24,                         // cut out, soft
                photo | (alpha < 110 ? 0U : 255U) << 24,    // cut out, hidden colours
                few[random() % few.size()],                 // few colours
                static_cast<uint32_t>(random()),            // noise
                (photo & 0x00F8F8F8) | (alpha >> 5) << 24,  // almost transparent
            };
            image.pixels.push_back(colors[kind]);
        }
    }
    return image;
}

KVBitmap* Fill(KVBitmap& bitmap, const SimpleImage& image) {
    std::ranges::copy(image.pixels, bitmap.Words().begin());
    return &bitmap;
}

SimplePalette Simple(const ReducePalette& palette) {
    SimplePalette colors;
    for (const KVColorPalette& entry : palette.entries) {
        colors.push_back({entry.blue, entry.green, entry.red, entry.alpha});
    }
    return colors;
}

std::vector<uint8_t> Indices(const KVBitmap& indexed) {
    std::vector<uint8_t> indices;
    for (int32_t y = 0; y < indexed.Height(); ++y) {
        const auto row = indexed.IndexRow(y);
        indices.insert(indices.end(), row.begin(), row.end());
    }
    return indices;
}

void ExpectEqualMapping(const ReducePalette& palette, const KVBitmap& bitmap, int dither,
                        const std::vector<uint8_t>& expected) {
    for (const SimdLevel level : {SimdLevel::Scalar, SupportedSimdLevel()}) {
        const ScopedSimdLevel forced(level);
        const auto indexed = MapToIndexed(palette, &bitmap, dither);
        ASSERT_NE(indexed, nullptr);
        ASSERT_EQ(Indices(*indexed), expected)
            << "dither " << dither << ", level " << static_cast<int>(level);
    }
}

TEST(Reduce, EqualsTheStepByStepForm) {
    for (uint32_t seed = 0; seed < 2048; ++seed) {
        SCOPED_TRACE(seed);
        const SimpleImage image = MakeImage(seed);
        KVBitmap bitmap(image.width, image.height);
        const int count = 1 + static_cast<int>(seed % 256);
        const int countSpec = seed % 16 == 0 ? static_cast<int>(seed / 16 % 10) : -count;
        const bool graduate = seed % 5 == 0;
        ReducePalette palette;
        ASSERT_TRUE(graduate ? QuantizeGraduated(palette, Fill(bitmap, image), count)
                             : QuantizePalette(palette, Fill(bitmap, image), countSpec));
        const SimplePalette expected =
            graduate ? SimpleGraduate(image, count) : SimpleQuantize(image, countSpec);
        ASSERT_EQ(Simple(palette), expected);
        for (int dither = 0; dither < 4; ++dither) {
            ExpectEqualMapping(palette, bitmap, dither, SimpleMap(expected, image, dither));
        }
    }
}

// Palettes that no image of ours gives: equal entries; all kinds of alpha close together;
// transparent entries far from all opaque ones, which may hide a closer alpha.
TEST(Reduce, FindsTheNearestInAnyPalette) {
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto word = [&] { return static_cast<uint32_t>(random()); };
        const auto color = [&]() -> uint32_t {
            const uint32_t rgb = word() & (seed % 2 == 0 ? 0x1F1F1F : 0xFFFFFF);
            switch (seed % 5) {
                case 0:
                    return rgb | word() << 24;
                case 1:
                    return rgb | 0xFF000000;
                case 2:
                    return word() % 4 == 0 ? rgb & 0x1F1F1F : rgb | 0xFFE0E0E0;
                default:
                    return word() % 2 == 0 ? rgb : rgb | 0xFF000000;
            }
        };
        ReducePalette palette;
        for (uint32_t i = 0; i < 1 + seed * 7 % 256; ++i) {
            palette.entries.emplace_back(color(), 1U);
        }
        FinishPalette(palette);
        SimpleImage image{64, 32, std::vector<uint32_t>(64 * 32)};
        for (uint32_t& pixel : image.pixels) {
            const uint32_t entry = palette.entries[word() % palette.entries.size()].Word();
            pixel = word() % 3 == 0 ? word() : (entry & 0xFFFFFF) | (word() | 1) << 24;
        }
        KVBitmap bitmap(image.width, image.height);
        const auto expected = SimpleMap(Simple(palette), image, NoDither);
        ExpectEqualMapping(palette, *Fill(bitmap, image), NoDither, expected);
        for (size_t i = 0; i < expected.size(); ++i) {
            const uint32_t pixel = VisibleColor(image.pixels[i]);
            ASSERT_EQ(palette.Grid() != nullptr ? FindNearestInGrid(palette, pixel)
                                                : FindNearest(palette, pixel),
                      expected[i]);
        }
    }
}

TEST(Reduce, KeepsFewColorsInOrderOfFirstAppearance) {
    const SimpleImage image{
        3, 2, {0xFF000009, 0x00123456, 0xFF000009, 0x80000001, 0x00654321, 0xFF000009}};
    KVBitmap bitmap(image.width, image.height);
    ReducePalette palette;
    ASSERT_TRUE(QuantizePalette(palette, Fill(bitmap, image), -3));
    EXPECT_EQ(Simple(palette), (SimplePalette{{9, 0, 0, 255}, {0, 0, 0, 0}, {1, 0, 0, 128}}));
    EXPECT_EQ(palette.entries[0].count, 3U);
    EXPECT_EQ(palette.entries[1].count, 2U);
    EXPECT_EQ(palette.alphaMode, AlphaMode::Axis);
    const auto indexed = ReduceBitmap(&bitmap, -3, LargeDiffusion, false);
    EXPECT_EQ(Indices(*indexed), (std::vector<uint8_t>{0, 1, 0, 2, 1, 0}));
    EXPECT_EQ(indexed->Palette()[2], 0x80000001);
}

TEST(Reduce, MayDropBothOfAClosePair) {
    SimpleImage image{4, 2, {0xFF000000, 0xFF0A0A0A, 0xFF646464, 0xFFC8C8C8}};
    image.pixels.insert(image.pixels.end(), image.pixels.begin(), image.pixels.begin() + 4);
    KVBitmap bitmap(image.width, image.height);
    ReducePalette palette;
    ASSERT_TRUE(QuantizePalette(palette, Fill(bitmap, image), -2));
    SimplePalette colors = Simple(palette);
    std::ranges::sort(colors);
    EXPECT_EQ(colors, (SimplePalette{{100, 100, 100, 255}, {200, 200, 200, 255}}));
}

TEST(Reduce, FailsWithoutPixelsPaletteOrMemory) {
    ReducePalette palette;
    KVBitmap bitmap(3, 3);
    KVBitmap indexed(3, 3, 2);
    KVBitmap empty(0, 3);
    for (const KVBitmap* bad :
         {static_cast<const KVBitmap*>(nullptr), &std::as_const(indexed), &std::as_const(empty)}) {
        EXPECT_FALSE(QuantizePalette(palette, bad, -16));
        EXPECT_FALSE(QuantizeGraduated(palette, bad, 16));
        EXPECT_EQ(ReduceBitmap(bad, -16, NoDither, false), nullptr);
    }
    EXPECT_EQ(MapToIndexed(palette, &bitmap, NoDither), nullptr);
    ASSERT_TRUE(QuantizePalette(palette, &bitmap, -16));
    EXPECT_EQ(Simple(palette), (SimplePalette{{0, 0, 0, 0}}));
    EXPECT_EQ(MapToIndexed(palette, &indexed, NoDither), nullptr);
    for (const int dither : {-1, 4}) {
        EXPECT_EQ(MapToIndexed(palette, &bitmap, dither), nullptr);
    }
    const SimpleImage image = MakeImage(5);
    KVBitmap noise(image.width, image.height);
    Fill(noise, image);
    int blocks = 0;
    const auto reduce = [&] {
        const ScopedBlockLimit limit(blocks++);
        return ReduceBitmap(&noise, -64, LargeDiffusion, false);
    };
    while (reduce() == nullptr) {
        ASSERT_LT(blocks, 100);
    }
    EXPECT_GT(blocks, 4);
    palette.entries.resize(257);
    EXPECT_EQ(MapToIndexed(palette, &bitmap, NoDither), nullptr);
}

}  // namespace
}  // namespace imgbasic
