#include <algorithm>
#include <climits>
#include <functional>
#include <utility>
#include <vector>

#include "lib/image/point/channels.h"
#include "lib/image/point/gray.h"
#include "lib/image/point/invert_tones.h"
#include "lib/image/point/mono.h"
#include "tests/image/kernel_test.h"
#include "tests/record/pictures.h"

namespace imgbasic {
namespace {

TEST(InvertTone, WrapsAboveFullScaleAndKeepsAlpha) {
    EXPECT_EQ(InvertTone({0, 0xFF00, 0x8000, 0x1234}), (RGBA16{0xFF00, 0, 0x7F00, 0x1234}));
    EXPECT_EQ(InvertTone({0xFFFF, 0xFF01, 1, 0}), (RGBA16{0xFF01, 0xFFFF, 0xFEFF, 0}));
}

TEST(GrayRow, GivesTheWorkedNumbers) {
    constexpr uint16_t kF = kFullScale;
    const struct {
        int32_t calcMode;
        uint32_t tint;
        RGBA16 pixel, result;
    } cases[] = {
        {0, 0xFFFFFF, {100, 900, 401, kF}, {498, 498, 498, kF}},           // 500
        {1, 0xFFFFFF, {100, 900, 401, kF}, {465, 465, 465, kF}},           // 467
        {2, 0xFFFFFF, {kF, 0, 0, kF}, {19434, 19434, 19434, kF}},          // 19511
        {2, 0xFFFFFF, {1, 2, 3, 0}, {0xFE01, 0xFE01, 0xFE01, 0}},          // 0xFF00
        {3, 0xFFFFFF, {0x1281, 0x80, 0, kF}, {4845, 4845, 4845, kF}},      // 0x1300
        {4, 0x0180FE, {kF, 0, 0, kF}, {255, 0x80 * 255, 0xFE * 255, kF}},  // 0xFF00
        {5, 0x0180FE, {0, kF, 0, kF}, {255, 0x80 * 255, 0xFE * 255, kF}},
        {6, 0x0180FE, {0, 0, kF, kF}, {255, 0x80 * 255, 0xFE * 255, kF}},
        {7, 0xFFFFFF, {kF, 0x8000, 0, kF}, {0xFE01, 0xFE01, 0xFE01, kF}},  // 0xFF00
        {8, 0xFFFFFF, {kF, 0, 0, kF}, {21538, 21538, 21538, kF}},          // 21623
        {9, 0xFFFFFF, {kF, 0, 0, kF}, {5286, 5286, 5286, kF}},             // 5307
        {10, 0xFFFFFF, {kF, 0, 0, 77}, {0, 0, 0, 77}},
    };
    for (const auto& c : cases) {
        RGBA16 result{};
        GrayRowFor(c.calcMode)(&result, &c.pixel, 1, c.tint, Store::Cached);
        EXPECT_EQ(result, c.result) << c.calcMode;
    }
}

TEST(TwoLevels, CompareRedAloneOverTransparentWhite) {
    for (const auto& [pixel, white] : {std::pair(RGBA16{0x8000, 0, 0, kFullScale}, true),
                                       {{0x7FFF, 0xFF00, 0xFF00, kFullScale}, false},
                                       {{1, 2, 3, 0}, true},
                                       {{0, 0, 0, 0x7F80}, false}}) {
        RGBA16 result{};
        ToTwoLevels(&result, &pixel, 1, 0x8000, Store::Cached);
        EXPECT_EQ(result.r, white ? kFullScale : 0);
    }
}

TEST(PercentOf, TruncatesAndWrapsHostilePercentages) {
    EXPECT_EQ(PercentOf(kFullScale, 50), 32640);
    EXPECT_EQ(PercentOf(199, 1), 1);
    EXPECT_EQ(PercentOf(199, 0xFFFF'FFFF), 0xFFFF) << "-199 / 100 is -1";
}

using Kernel = std::function<void(RGBA16* dst, const RGBA16* src, size_t count)>;

/// Runs `test` with every point kernel, with the values that its forms may treat apart.
void ForEachKernel(const std::function<void(const Kernel& kernel)>& test) {
    const auto run = [&](const char* name, int64_t option, const Kernel& kernel) {
        SCOPED_TRACE(testing::Message() << name << " " << option);
        test(kernel);
    };
    for (const Store store : {Store::Cached, Store::Streaming}) {
        const auto runStored = [&](const char* name, int64_t option, auto& function,
                                   auto... options) {
            run(name, option, [&, store](RGBA16* dst, const RGBA16* src, size_t count) {
                function(dst, src, count, options..., store);
            });
        };
        runStored("invert", 0, InvertTones);
        for (const Channel channel : {Channel::R, Channel::G, Channel::B, Channel::A}) {
            void (&isolate)(RGBA16*, const RGBA16*, size_t, Channel, Store) = IsolateChannel;
            runStored("isolate", static_cast<int64_t>(channel), isolate, channel);
        }
        for (int32_t mode = 0; mode <= 10; ++mode) {
            runStored("gray", mode, GrayRowFor(mode), mode % 2 == 0 ? 0xFFFFFFU : 0x0180FEU);
        }
        for (const int32_t level : {INT_MIN, 0, 1, 0x8000, 0xFF00, 0xFFFF, 0x10000, INT_MAX}) {
            runStored("mono", level, ToTwoLevels, level);
        }
    }
    for (const Channel channel : {Channel::R, Channel::G, Channel::B, Channel::A}) {
        for (const uint32_t percent : {0U, 1U, 99U, 100U, 40000U, 0x8000'0000U, ~0U}) {
            run("take and join", percent, [=](RGBA16* dst, const RGBA16* src, size_t count) {
                std::vector<uint16_t> taken(count + 1, 0xDEAD);
                std::vector<uint16_t> whole(count);
                const Store store = percent == 1 ? Store::Streaming : Store::Cached;
                TakeChannel(taken.data(), src, count, channel, percent, store);
                TakeChannel(whole.data(), src, count, Channel::R, 100, store);
                ASSERT_EQ(taken.back(), 0xDEAD) << "written behind the end";
                JoinChannels(dst, {whole.data(), taken.data(), &taken[1]}, src, count, store);
            });
        }
    }
}

/// Host buffers begin at any even address.
RGBA16* PixelsAt(std::vector<uint16_t>& words, size_t channel) {
    return reinterpret_cast<RGBA16*>(&words[channel]);
}

/// Runs `kernel` in the active form and in the scalar one on pixels that begin `first` pixels and
/// up to three channels into a buffer, and expects equal results and nothing written around them.
void ExpectScalarResults(const Kernel& kernel, const std::vector<RGBA16>& src, size_t first,
                         size_t count) {
    const size_t shift = count % 4;
    std::vector<uint16_t> from(4 * src.size() + shift + 1);
    std::ranges::copy(src, PixelsAt(from, shift));
    std::vector<uint16_t> actual(4 * (first + count + 8), 0xDEAD);
    std::vector<uint16_t> expected = actual;
    const RGBA16* const start = PixelsAt(from, shift) + first * 3 % 8;
    kernel(PixelsAt(actual, shift) + first, start, count);
    const ScopedSimdLevel scalar(SimdLevel::Scalar);
    kernel(PixelsAt(expected, shift) + first, start, count);
    ASSERT_EQ(actual, expected) << count << " pixels from " << first;
}

class PointForms : public KernelTest {};

TEST_P(PointForms, EqualTheScalarFormAtEveryLengthAndAlignment) {
    const auto pixels = MakePicture(67 + 8, 1, Kind::Edges).pixels;
    ForEachKernel([&](const Kernel& kernel) {
        for (size_t i = 0; i < size_t{67} * 8; ++i) {
            ASSERT_NO_FATAL_FAILURE(ExpectScalarResults(kernel, pixels, i % 8, i / 8 + 1));
        }
    });
}

/// One colour, the same in all channels, under every alpha there is.
std::vector<RGBA16> UnderEveryAlpha(int32_t value) {
    const auto color = static_cast<uint16_t>(value);
    std::vector<RGBA16> pixels;
    for (uint32_t alpha = 0; alpha < 0x10000; ++alpha) {
        pixels.push_back({color, color, color, static_cast<uint16_t>(alpha)});
    }
    return pixels;
}

TEST_P(PointForms, EqualTheScalarFormForEveryAlphaAndSaturation) {
    auto pixels = MakePicture(200, 100, Kind::Edges).pixels;
    const auto alphas = UnderEveryAlpha(0xFEFF);
    pixels.insert(pixels.end(), alphas.begin(), alphas.end());
    for (uint32_t i = 0; i <= 0xFFFF; ++i) {
        const auto low = static_cast<uint16_t>(i << 8);
        pixels.push_back({static_cast<uint16_t>(i), low, low, kFullScale});
    }
    ForEachKernel([&](const Kernel& kernel) {
        ASSERT_NO_FATAL_FAILURE(ExpectScalarResults(kernel, pixels, 0, pixels.size()));
    });
}

/// With the colour as the level, one unit lost to rounding turns white into black.
TEST_P(PointForms, OfMonoEqualTheScalarFormWhereRoundingDecides) {
    std::vector<int32_t> colors{0, 1, 2, 0x100, 1000, 0x7FFF, 0x8000, 0xFFFF};
    for (int32_t color = 0xFE00; color <= 0xFF01; ++color) {
        colors.push_back(color);
    }
    for (const int32_t color : colors) {
        SCOPED_TRACE(color);
        const auto kernel = [=](RGBA16* dst, const RGBA16* src, size_t count) {
            ToTwoLevels(dst, src, count, color, Store::Cached);
        };
        ASSERT_NO_FATAL_FAILURE(ExpectScalarResults(kernel, UnderEveryAlpha(color), 0, 0x10000));
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, PointForms, kForms, FormName);

}  // namespace
}  // namespace imgbasic
