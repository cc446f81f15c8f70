#include "lib/image/kv_bitmap.h"

#include <gtest/gtest.h>

#include <limits>

#include "lib/base/log.h"
#include "tests/image/inflate_streams.h"

namespace imgbasic {
namespace {

constexpr int32_t kHuge = std::numeric_limits<int32_t>::max();

TEST(KVBitmap, ImpossibleSizesAndLackOfMemoryGiveNoPixels) {
    const ScopedBlockLimit noMemory(0);
    const struct {
        int32_t width;
        int32_t height;
        uint32_t paletteCount;
    } cases[] = {{0, 1, 0},   {1, 0, 0}, {-1, 1, 4},        {1, -1, 0},
                 {1, 1, 257}, {1, 1, 0}, {kHuge, kHuge, 0}, {kHuge, kHuge, 256}};
    for (const auto& wrong : cases) {
        KVBitmap bitmap(wrong.width, wrong.height, wrong.paletteCount);
        EXPECT_FALSE(bitmap.EnsurePixels());
        EXPECT_TRUE(bitmap.Words().empty());
        EXPECT_TRUE(bitmap.Palette().empty());
        EXPECT_TRUE(bitmap.IndexRow(0).empty());
        EXPECT_EQ(CopyBitmap(bitmap), nullptr);
    }
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

TEST(KVBitmap, IndexedRowsArePaddedBehindThePaletteArea) {
    KVBitmap bitmap(3, 2, 2);
    const auto* block = reinterpret_cast<const uint8_t*>(bitmap.Palette().data());
    EXPECT_EQ(bitmap.IndexRow(0).data(), block + 1024);
    EXPECT_EQ(bitmap.IndexRow(1).data(), block + 1028);
    EXPECT_EQ(bitmap.IndexRow(1).size(), 3U);
    EXPECT_TRUE(bitmap.IndexRow(2).empty());
    EXPECT_TRUE(bitmap.IndexRow(-1).empty());
    EXPECT_TRUE(bitmap.Words().empty());
    EXPECT_EQ(bitmap.Palette().size(), 2U);
}

TEST(KVBitmap, CopiesAreDeepAndExpandToTheSamePixels) {
    KVBitmap indexed(3, 2, 2);
    Fill(indexed);
    const auto copy = CopyBitmap(indexed);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(Expanded(*copy), kExpanded);
    KVBitmap words(3, 2);
    ASSERT_TRUE(ExpandIndexed(words, indexed));
    const auto wordsCopy = CopyBitmap(words);
    ASSERT_NE(wordsCopy, nullptr);
    std::ranges::fill(words.Words(), 1U);
    EXPECT_EQ(Expanded(*wordsCopy), kExpanded);
    std::ranges::fill(indexed.IndexRow(0), uint8_t{1});
    EXPECT_EQ(copy->IndexRow(0)[0], 0);
}

TEST(KVBitmap, CopyAndExpandRefuseWhatDoesNotFit) {
    KVBitmap source(3, 2, 2);
    KVBitmap wider(4, 2);
    KVBitmap taller(3, 3);
    KVBitmap indexed(3, 2, 2);
    EXPECT_FALSE(ExpandIndexed(wider, source));
    EXPECT_FALSE(ExpandIndexed(taller, source));
    EXPECT_FALSE(ExpandIndexed(indexed, source));
    {
        const ScopedBlockLimit noMemory(0);
        EXPECT_EQ(CopyBitmap(source), nullptr);
    }
    source.identifier = 0;
    EXPECT_EQ(CopyBitmap(source), nullptr);
}

// The packed layout of Fill's bitmap, and the layout in memory.
Bytes Layout(bool padded, size_t surplus) {
    Bytes bytes{0x33, 0x22, 0x11, 0xFF, 0x66, 0x55, 0x44, 0x80};
    bytes.resize(padded ? 1024 : 8);
    for (const uint8_t index : Bytes{0, 1, 0, 255, 1, 9, 1, 255}) {
        if (padded || index != 255) {
            bytes.push_back(index);
        }
    }
    bytes.resize(bytes.size() + surplus);
    return bytes;
}

TEST(KVBitmap, InflatesBothLayoutsOfAnIndexedBitmap) {
    // A surplus makes any layout the packed one; up to 64 KiB above the padded one are believed.
    for (const Bytes& layout : {Layout(true, 0), Layout(false, 0), Layout(false, 3000)}) {
        const KVBitmap bitmap(3, 2, 2, PixelStream(layout.size(), StoredBlock(layout)));
        EXPECT_EQ(Expanded(bitmap), kExpanded) << layout.size();
        EXPECT_EQ(bitmap.IndexRow(1).data() - bitmap.IndexRow(0).data(), 4);
    }
    const Bytes packed = Layout(false, 0);
    const KVBitmap bitmap(3, 2, 2, PixelStream(packed.size(), StoredBlock(packed)));
    {
        const ScopedBlockLimit noMemoryToLayOutAnew(1);
        ASSERT_TRUE(bitmap.EnsurePixels());
    }
    EXPECT_EQ(bitmap.IndexRow(1).data() - bitmap.IndexRow(0).data(), 3);
    EXPECT_EQ(Expanded(bitmap), kExpanded);
}

TEST(KVBitmap, BelievesSizesOnlyAsFarAsItsOwnAllow) {
    const struct {
        uint32_t paletteCount;
        size_t least;
        size_t most;
    } layouts[] = {{0, 24, 24 + 65536}, {2, 14, 1032 + 65536}};
    Bytes pieces;  // data for any of the sizes: two stored blocks
    for (const uint32_t last : {0U, 1U}) {
        BitWriter block;
        block.Number(last, 3).AlignToByte().Number(40000, 16).Number(~40000U, 16);
        Bytes bytes = block;
        bytes.resize(bytes.size() + 40000, 0);
        pieces.insert(pieces.end(), bytes.begin(), bytes.end());
    }
    for (const auto& [paletteCount, least, most] : layouts) {
        for (const size_t size :
             {least - 1, least, most, most + 1, size_t{0}, size_t{0xFFFFFFFF}}) {
            const KVBitmap bitmap(3, 2, paletteCount, PixelStream(size, pieces));
            const ScopedBlockLimit two(size < least || size > most ? 0 : 2);
            EXPECT_EQ(bitmap.EnsurePixels(), size >= least && size <= most) << size;
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
        EXPECT_FALSE(bitmap.EnsurePixels());
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
