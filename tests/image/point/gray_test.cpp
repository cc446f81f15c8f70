#include "lib/image/point/gray.h"

#include <algorithm>

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

constexpr uint32_t kTints[] = {0xFFFFFF, 0x336699, 0x0180FE};

/// The gray value of a composited pixel by the books.
int64_t SimpleGray(int32_t mode, int64_t r, int64_t g, int64_t b) {
    const auto byte = [](int64_t channel) { return std::min<int64_t>((channel + 127) >> 8, 255); };
    const int64_t largest = std::max({byte(r), byte(g), byte(b)});
    const int64_t smallest = std::min({byte(r), byte(g), byte(b)});
    const int64_t values[] = {
        (std::max({r, g, b}) + std::min({r, g, b})) / 2,
        (r + g + b) / 3,
        (4897 * r + 9611 * g + 1876 * b) >> 14,
        largest * 0xFF00 / 255,
        r,
        g,
        b,
        largest == 0 ? 0 : (largest - smallest) * 255 / largest * 0xFF00 / 255,
        ((b + 0xFF00) * 8192 - 5427 * g - 2765 * r) >> 14,
        ((b + 0xFF00) * 8192 - 6860 * r - 1332 * g) >> 14,
    };
    return mode >= 0 && mode < 10 ? values[mode] : 0;
}

RGBA16 SimplePixel(int32_t mode, uint32_t tint, RGBA16 p) {
    const double alpha = p.a / 65280.0;
    const auto over = [&](uint16_t channel) {
        return p.a == 0 ? 0xFF00 : static_cast<int64_t>(channel * alpha * (1.0 / alpha));
    };
    const auto gray = static_cast<uint32_t>(SimpleGray(mode, over(p.r), over(p.g), over(p.b)));
    const auto tinted = [&](uint32_t factor) { return static_cast<uint16_t>(gray * factor >> 8); };
    return {tinted(tint >> 16), tinted(tint >> 8 & 0xFF), tinted(tint & 0xFF),
            static_cast<uint16_t>(alpha * 65280.0)};
}

TEST(Gray, EqualsThePlainComputationInEveryMode) {
    const ScopedSimdLevel scalar(SimdLevel::Scalar);
    for (int32_t mode = -1; mode <= 10; ++mode) {
        for (const RGBA16& pixel : EdgyPixels(20000, 3)) {
            RGBA16 result{};
            GrayRowFor(mode)(&result, &pixel, 1, 0x3366FF, Store::Cached);
            ASSERT_EQ(result, SimplePixel(mode, 0x3366FF, pixel))
                << "mode " << mode << " of " << testing::PrintToString(pixel);
        }
    }
}

class GrayForms : public KernelTest {};

TEST_P(GrayForms, EqualTheScalarForm) {
    auto pixels = EdgyPixels(100000, 4);
    for (uint32_t i = 0; i <= 0xFFFF; ++i) {  // every saturation
        const auto low = static_cast<uint16_t>(i << 8);
        pixels.push_back({static_cast<uint16_t>(i), low, low, kFullScale});
    }
    for (int32_t mode = 0; mode <= 10; ++mode) {
        for (const uint32_t tint : kTints) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", tint " << tint);
            const Store store = (tint & 1) != 0 ? Store::Streaming : Store::Cached;
            const auto kernel = [=](RGBA16* dst, const RGBA16* src, size_t count) {
                GrayRowFor(mode)(dst, src, count, tint, store);
            };
            ExpectEqualForms(GetParam(), 2, kernel);
            ExpectEqualResults(GetParam(), pixels, kernel);
            ExpectEqualResults(GetParam(), UnderEveryAlpha(0xFEFF), kernel);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, GrayForms, kVectorLevels);

}  // namespace
}  // namespace imgbasic
