#include "lib/image/mono.h"

#include <climits>

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

constexpr RGBA16 kTransparent{1, 2, 3, 0};

TEST(ToTwoLevels, ComparesRedAloneSeenOverWhite) {
    constexpr struct {
        int32_t level;
        RGBA16 pixel;
        uint16_t result;
        uint16_t alpha;
    } kCases[] = {
        {0x8000, {0x8000, 0, 0, 0xFF00}, 0xFF00, 0xFF00},
        {0x8000, {0x7FFF, 0xFF00, 0xFF00, 0xFF00}, 0, 0xFF00},
        {0xFF00, {0xFF00, 0xFF00, 0xFF00, 0xFF00}, 0xFF00, 0xFF00},
        {0xFF00, kTransparent, 0xFF00, 0},
        {0x10000, {0xFFFF, 0, 0, 0xFF00}, 0, 0xFF00},
        {INT_MAX, kTransparent, 0, 0},
        {INT_MIN, {0, 0, 0, 0xFF00}, 0xFF00, 0xFF00},
        // 1000 * (100 / 65280.0) * (1 / (100 / 65280.0)) stays just below 1000.
        {1000, {1000, 0, 0, 100}, 0, 100},
        {999, {1000, 0, 0, 100}, 0xFF00, 100},
    };
    const ScopedSimdLevel scalar(SimdLevel::Scalar);
    for (const auto& c : kCases) {
        RGBA16 result{};
        ToTwoLevels(&result, &c.pixel, 1, c.level, Store::Cached);
        EXPECT_EQ(result, (RGBA16{c.result, c.result, c.result, c.alpha})) << c.level;
    }
}

class ToTwoLevelsForms : public KernelTest {};

TEST_P(ToTwoLevelsForms, EqualTheScalarForm) {
    for (const Store store : {Store::Cached, Store::Streaming}) {
        for (const int32_t level : {INT_MIN, 0, 1, 0x8000, 0xFF00, 0xFFFF, 0x10000, INT_MAX}) {
            SCOPED_TRACE(level);
            const auto kernel = [=](RGBA16* dst, const RGBA16* src, size_t count) {
                ToTwoLevels(dst, src, count, level, store);
            };
            ExpectEqualForms(GetParam(), 5, kernel);
            ExpectEqualResults(GetParam(), EdgyPixels(20000, 6), kernel);
        }
    }
}

TEST_P(ToTwoLevelsForms, EqualTheScalarFormWhereRoundingDecides) {
    std::vector<uint16_t> colors{0, 1, 2, 0x100, 1000, 0x7FFF, 0x8000, 0xFFFF};
    for (uint16_t color = 0xFE00; color <= 0xFF01; ++color) {
        colors.push_back(color);
    }
    for (const uint16_t color : colors) {
        SCOPED_TRACE(color);
        ExpectEqualResults(GetParam(), UnderEveryAlpha(color),
                           [=](RGBA16* dst, const RGBA16* src, size_t count) {
                               ToTwoLevels(dst, src, count, color, Store::Cached);
                           });
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, ToTwoLevelsForms, kVectorLevels);

}  // namespace
}  // namespace imgbasic
