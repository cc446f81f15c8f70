#include "lib/image/gray.h"

#include <algorithm>
#include <climits>

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kTints[] = {kWhite, 0, 0xFF0000, 0x336699, 0x0180FE};
constexpr int32_t kNoModes[] = {-1, 10, 11, INT_MAX, INT_MIN};

RGBA16 Gray(int32_t mode, uint32_t tint, RGBA16 pixel) {
    const ScopedSimdLevel scalar(SimdLevel::Scalar);
    RGBA16 result{};
    GrayRowFor(mode)(&result, &pixel, 1, tint, Store::Cached);
    return result;
}

struct Worked {
    int32_t mode;
    RGBA16 pixel;
    uint16_t gray;  ///< with the white tint
};

constexpr uint16_t kF = kFullScale;

// A gray value v comes out as v * 255 / 256.
constexpr Worked kWorked[] = {
    {0, {100, 900, 401, kF}, 498},     // 500
    {1, {100, 900, 401, kF}, 465},     // 467
    {2, {kF, 0, 0, kF}, 19434},        // 19511
    {3, {0x1281, 0x80, 0, kF}, 4845},  // 0x1300
    {4, {kF, kF, kF, kF}, 0xFE01},     //
    {5, {1, 0x8000, 2, kF}, 0x7F80},   //
    {6, {1, 2, 0x8000, kF}, 0x7F80},   //
    {7, {kF, 0x8000, 0, kF}, 0xFE01},  //
    {7, {0, 0, 0, kF}, 0},             //
    {7, {300, 300, 300, kF}, 0},       //
    {8, {kF, 0, 0, kF}, 21538},        // 21623
    {9, {kF, 0, 0, kF}, 5286},         // 5307
    {8, {1, 2, 3, 0}, 32512},          // white: 0x7F80
    {2, {1, 2, 3, 0}, 0xFE01},         // white
    {10, {kF, kF, kF, kF}, 0},         //
};

TEST(Gray, GivesTheWorkedNumbers) {
    for (const Worked& c : kWorked) {
        EXPECT_EQ(Gray(c.mode, kWhite, c.pixel), (RGBA16{c.gray, c.gray, c.gray, c.pixel.a}))
            << "mode " << c.mode;
    }
    EXPECT_EQ(Gray(4, 0x336699, {kF, 0, 0, kF}), (RGBA16{0x32CD, 0x659A, 0x9867, kF}));
}

/// The gray value by the books, in 64 bits. Channels are those of a composited pixel.
int64_t SimpleGray(int32_t mode, int64_t r, int64_t g, int64_t b) {
    const auto byte = [](int64_t channel) { return std::min<int64_t>((channel + 127) / 256, 255); };
    const int64_t largest = std::max(byte(r), std::max(byte(g), byte(b)));
    const int64_t smallest = std::min(byte(r), std::min(byte(g), byte(b)));
    const auto floorOf = [](int64_t sum) { return (sum - (sum % 16384 + 16384) % 16384) / 16384; };
    const int64_t values[] = {
        (std::max(r, std::max(g, b)) + std::min(r, std::min(g, b))) / 2,
        (r + g + b) / 3,
        floorOf(4897 * r + 9611 * g + 1876 * b),
        largest * 0xFF00 / 255,
        r,
        g,
        b,
        largest == 0 ? 0 : (largest - smallest) * 255 / largest * 0xFF00 / 255,
        floorOf((b + 0xFF00) * 8192 - 5427 * g - 2765 * r),
        floorOf((b + 0xFF00) * 8192 - 6860 * r - 1332 * g),
    };
    return mode >= 0 && mode < 10 ? values[mode] : 0;
}

RGBA16 SimplePixel(int32_t mode, uint32_t tint, RGBA16 p) {
    RGBA16 over{0xFF00, 0xFF00, 0xFF00, 0};
    if (p.a != 0) {
        const double alpha = p.a / 65280.0;
        const double inverse = 1.0 / alpha;
        over = {static_cast<uint16_t>(p.r * alpha * inverse),
                static_cast<uint16_t>(p.g * alpha * inverse),
                static_cast<uint16_t>(p.b * alpha * inverse),
                static_cast<uint16_t>(alpha * 65280.0)};
    }
    const auto gray = static_cast<uint32_t>(SimpleGray(mode, over.r, over.g, over.b));
    const auto tinted = [&](uint32_t factor) { return static_cast<uint16_t>(gray * factor >> 8); };
    return {tinted(tint >> 16), tinted(tint >> 8 & 0xFF), tinted(tint & 0xFF), over.a};
}

TEST(Gray, EqualsThePlainComputationInEveryMode) {
    const auto pixels = EdgyPixels(20000, 3);
    for (int32_t mode = -1; mode <= 10; ++mode) {
        for (const uint32_t tint : kTints) {
            for (const RGBA16& pixel : pixels) {
                ASSERT_EQ(Gray(mode, tint, pixel), SimplePixel(mode, tint, pixel))
                    << "mode " << mode << " of " << testing::PrintToString(pixel);
            }
        }
    }
    for (const int32_t mode : kNoModes) {
        EXPECT_EQ(Gray(mode, kWhite, {1, 2, 3, 4}), (RGBA16{0, 0, 0, 4}));
    }
}

class GrayForms : public KernelTest {};

TEST_P(GrayForms, EqualTheScalarForm) {
    for (int32_t mode = 0; mode <= 10; ++mode) {
        for (const uint32_t tint : kTints) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", tint " << tint);
            const Store store = (tint & 1) != 0 ? Store::Streaming : Store::Cached;
            const auto kernel = [=](RGBA16* dst, const RGBA16* src, size_t count) {
                GrayRowFor(mode)(dst, src, count, tint, store);
            };
            ExpectEqualForms(GetParam(), 2, kernel);
            ExpectEqualResults(GetParam(), EdgyPixels(20000, 4), kernel);
        }
    }
}

/// Opaque pixels with every sum of channels, and with every pair of largest and smallest byte.
std::vector<RGBA16> EverySumAndSpread() {
    std::vector<RGBA16> pixels;
    for (uint32_t value = 0; value <= 0xFFFF; ++value) {
        const auto v = static_cast<uint16_t>(value);
        pixels.push_back({v, 0, 0, kF});
        pixels.push_back({0xFFFF, v, 0, kF});
        pixels.push_back({0xFFFF, 0xFFFF, v, kF});
        const auto high = static_cast<uint16_t>(value & 0xFF00);
        const auto low = static_cast<uint16_t>(value << 8);
        pixels.push_back({low, high, low, kF});
    }
    return pixels;
}

TEST_P(GrayForms, EqualTheScalarFormUnderEveryAlphaAndForEveryQuotient) {
    constexpr uint16_t kColors[] = {0, 1, 0x7F81, 0xFE00, 0xFEFF, 0xFF00, 0xFF01, 0xFFFF};
    const auto quotients = EverySumAndSpread();
    for (int32_t mode = 0; mode <= 10; ++mode) {
        SCOPED_TRACE(testing::Message() << "mode " << mode);
        const auto kernel = [mode](RGBA16* dst, const RGBA16* src, size_t count) {
            GrayRowFor(mode)(dst, src, count, kWhite, Store::Cached);
        };
        ExpectEqualResults(GetParam(), quotients, kernel);
        for (const uint16_t color : kColors) {
            ExpectEqualResults(GetParam(), UnderEveryAlpha(color), kernel);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, GrayForms, kVectorLevels);

}  // namespace
}  // namespace imgbasic
