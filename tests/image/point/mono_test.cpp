#include "lib/image/point/mono.h"

#include <climits>

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

class ToTwoLevelsForms : public KernelTest {};

TEST_P(ToTwoLevelsForms, EqualTheScalarForm) {
    for (const int32_t level : {INT_MIN, 0, 1, 0x8000, 0xFF00, 0xFFFF, 0x10000, INT_MAX}) {
        SCOPED_TRACE(level);
        const Store store = level % 2 == 0 ? Store::Streaming : Store::Cached;
        const auto kernel = [=](RGBA16* dst, const RGBA16* src, size_t count) {
            ToTwoLevels(dst, src, count, level, store);
        };
        ExpectEqualForms(GetParam(), 5, kernel);
        ExpectEqualResults(GetParam(), EdgyPixels(20000, 6), kernel);
    }
}

/// With the colour as the level, one unit lost to rounding turns white into black.
TEST_P(ToTwoLevelsForms, EqualTheScalarFormWhereRoundingDecides) {
    std::vector<int32_t> colors{0, 1, 2, 0x100, 1000, 0x7FFF, 0x8000, 0xFFFF};
    for (int32_t color = 0xFE00; color <= 0xFF01; ++color) {
        colors.push_back(color);
    }
    for (const int32_t color : colors) {
        SCOPED_TRACE(color);
        ExpectEqualResults(GetParam(), UnderEveryAlpha(static_cast<uint16_t>(color)),
                           [=](RGBA16* dst, const RGBA16* src, size_t count) {
                               ToTwoLevels(dst, src, count, color, Store::Cached);
                           });
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, ToTwoLevelsForms, kVectorLevels);

}  // namespace
}  // namespace imgbasic
