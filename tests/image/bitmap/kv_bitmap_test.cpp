#include "lib/image/bitmap/kv_bitmap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <tuple>

#include "lib/base/log.h"
#include "tests/image/inflate/inflate_streams.h"

namespace imgbasic {
namespace {

TEST(KVBitmap, ImpossibleSizesAndLackOfMemoryGiveNoPixels) {
    constexpr int32_t kHuge = std::numeric_limits<int32_t>::max();
    const auto expectNoPixels = [](int32_t width, int32_t height, uint32_t paletteCount) {
        const KVBitmap bitmap(width, height, paletteCount);
        EXPECT_TRUE(bitmap.Words().empty() && bitmap.Palette().empty() &&
                    bitmap.IndexRow(0).empty() && CopyBitmap(bitmap) == nullptr)
            << width << " x " << height << ", " << paletteCount;
    };
    expectNoPixels(0, 1, 0);
    expectNoPixels(1, 0, 4);
    expectNoPixels(-1, -1, 0);
    expectNoPixels(1, 1, 257);
    expectNoPixels(kHuge, kHuge, 0);
    const ScopedBlockLimit noMemory(0);
    expectNoPixels(1, 1, 0);
    expectNoPixels(kHuge, kHuge, 256);
}

// 3 x 2 pixels, 2 colours; the index 9 has none.
void Fill(KVBitmap& bitmap) {
    std::ranges::copy(std::vector<uint32_t>{0xFF112233, 0x80445566}, bitmap.Palette().begin());
    std::ranges::copy(Bytes{0, 1, 0}, bitmap.IndexRow(0).begin());
    std::ranges::copy(Bytes{1, 9, 1}, bitmap.IndexRow(1).begin());
}
const std::vector<uint32_t> kExpanded{0xFF112233, 0x80445566, 0xFF112233,
                                      0x80445566, 0,          0x80445566};

std::vector<uint32_t> Expanded(const KVBitmap& source) {
    KVBitmap expanded(source.Width(), source.Height());
    return ExpandIndexed(expanded, source)
               ? std::vector<uint32_t>(expanded.Words().begin(), expanded.Words().end())
               : std::vector<uint32_t>{};
}

TEST(KVBitmap, CopiesAreDeepAndExpandToTheSamePixels) {
    KVBitmap indexed(3, 2, 2);
    Fill(indexed);
    EXPECT_TRUE(indexed.IndexRow(2).empty() && indexed.IndexRow(-1).empty());
    const auto copy = CopyBitmap(indexed);
    KVBitmap words(3, 2);
    ASSERT_TRUE(ExpandIndexed(words, indexed));
    const auto wordsCopy = CopyBitmap(words);
    ASSERT_TRUE(copy != nullptr && wordsCopy != nullptr);
    std::ranges::fill(words.Words(), 1U);
    std::ranges::fill(indexed.IndexRow(0), uint8_t{1});
    EXPECT_EQ(Expanded(*copy), kExpanded);
    EXPECT_EQ(Expanded(*wordsCopy), kExpanded);
}

TEST(KVBitmap, CopyAndExpandRefuseWhatDoesNotFit) {
    KVBitmap source(3, 2, 2);
    for (const auto& [width, height, paletteCount] : {std::tuple{4, 2, 0}, {3, 3, 0}, {3, 2, 2}}) {
        KVBitmap other(width, height, static_cast<uint32_t>(paletteCount));
        EXPECT_FALSE(ExpandIndexed(other, source)) << width << " x " << height;
    }
    {
        const ScopedBlockLimit noMemory(0);
        EXPECT_EQ(CopyBitmap(source), nullptr);
    }
    source.identifier = 0;
    EXPECT_EQ(CopyBitmap(source), nullptr);
}

TEST(KVBitmap, InflatesBothLayoutsOfAnIndexedBitmap) {
    const auto stream = [](Bytes layout, size_t surplus) {
        layout.resize(layout.size() + surplus);
        return PixelStream(layout.size(), StoredBlock(layout));
    };
    const Bytes packed{0x33, 0x22, 0x11, 0xFF, 0x66, 0x55, 0x44, 0x80, 0, 1, 0, 1, 9, 1};
    Bytes padded(packed.begin(), packed.begin() + 8);
    padded.resize(1024);
    padded.insert(padded.end(), {0, 1, 0, 77, 1, 9, 1, 77});
    // A surplus does not make the layout another one; only the padded one's own size does.
    for (const Bytes& pixels : {stream(padded, 0), stream(packed, 0), stream(packed, 3000)}) {
        const KVBitmap bitmap(3, 2, 2, pixels);
        EXPECT_EQ(Expanded(bitmap), kExpanded) << pixels.size();
        EXPECT_EQ(
            bitmap.IndexRow(0).data() - reinterpret_cast<const uint8_t*>(&bitmap.Palette()[0]),
            1024);
        EXPECT_EQ(bitmap.IndexRow(1).data() - bitmap.IndexRow(0).data(), 4);
    }
    const KVBitmap bitmap(3, 2, 2, stream(packed, 0));
    {
        const ScopedBlockLimit noMemoryToLayOutAnew(1);
        ASSERT_TRUE(bitmap.EnsurePixels());
    }
    EXPECT_EQ(bitmap.IndexRow(1).data() - bitmap.IndexRow(0).data(), 3);
    EXPECT_EQ(Expanded(bitmap), kExpanded);
}

TEST(KVBitmap, BelievesSizesOnlyAsFarAsItsOwnAllow) {
    // Enough for any of the sizes. Fixed codes: literal 0 00110000, length 258 11000101,
    // distance 1 00000.
    BitWriter zeros;
    zeros.Number(3, 3).Code("00110000");
    for (int i = 0; i < 260; ++i) {
        zeros.Code("1100010100000");
    }
    for (const auto& [paletteCount, least, most] :
         {std::tuple{0U, 24U, 24U + 65536}, {2U, 14U, 1032U + 65536}}) {
        for (const uint32_t size : {0U, least - 1, least, most, most + 1, UINT32_MAX}) {
            const bool believed = size >= least && size <= most;
            std::string log;
            const LogCapture capture([&](std::string_view line) { log += line.substr(22); });
            const KVBitmap bitmap(3, 2, paletteCount, PixelStream(size, zeros));
            EXPECT_EQ(bitmap.EnsurePixels(), believed) << size;
            EXPECT_EQ(log, believed ? "" : "[KVInflate]ファイル読み込みエラー\n") << size;
        }
    }
}

TEST(KVBitmap, InflatesOnlyWhenItMay) {
    const Bytes words(24, 7);
    const Bytes stream = PixelStream(24, StoredBlock(words));
    KVBitmap bitmap(3, 2, 0, stream);
    bitmap.locked = true;
    EXPECT_FALSE(bitmap.EnsurePixels());
    EXPECT_EQ(CopyBitmap(bitmap), nullptr);
    bitmap.locked = false;
    bitmap.identifier = 0;
    EXPECT_TRUE(bitmap.Words().empty());
    bitmap.identifier = -1;
    {
        const ScopedBlockLimit noMemory(0);
        std::string log;
        const LogCapture capture([&](std::string_view line) { log += line.substr(22); });
        EXPECT_FALSE(bitmap.EnsurePixels());
        EXPECT_EQ(log, "[KVInflate]ワークが作成できない - \n");
    }
    ASSERT_EQ(bitmap.Words().size(), 6U);
    EXPECT_EQ(bitmap.Words()[5], 0x07070707U);
    bitmap.locked = true;
    EXPECT_TRUE(bitmap.EnsurePixels());

    const LogCapture quiet([](std::string_view) {});
    Bytes damaged = stream;
    damaged[14] ^= 1;
    EXPECT_FALSE(KVBitmap(3, 2, 0, damaged).EnsurePixels());
    EXPECT_FALSE(KVBitmap(-3, -2, 0, stream).EnsurePixels());
}

}  // namespace
}  // namespace imgbasic
