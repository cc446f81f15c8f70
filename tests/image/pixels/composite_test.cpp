#include "lib/image/pixels/composite.h"

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

constexpr RGBA16 kWorked[][3] = {
    // backdrop, source, result
    {{1, 2, 3, 4}, {9, 9, 9, 0}, {1, 2, 3, 4}},
    {{0, 0, 0xFF00, 0xFF00}, {0xFF00, 0, 1, 0x7F80}, {0x7F80, 0, 0x7F80, 0xFF00}},
    {{0, 300, 0, 0x7F80}, {0xFF00, 300, 3, 0x7F80}, {43520, 300, 2, 0xBF40}},
    // The order of the operations decides: exactly it were 21766.
    {{0, 0, 0, 21760}, {0, 0, 0, 9}, {0, 0, 0, 21765}},
    // Beyond full opacity a colour can leave 16 bits on either side: 65792 and -257.
    {{0, 0xFFFF, 5, 0xFFFF}, {0xFFFF, 0, 5, 0xFFFF}, {256, 65279, 5, 65279}},
};

TEST(CompositeOver, GivesTheWorkedNumbers) {
    for (const auto& [backdrop, source, expected] : kWorked) {
        RGBA16 result = backdrop;
        CompositeOver(result, source);
        EXPECT_EQ(result, expected);
    }
}

TEST(OverTransparentWhite, IsIntegerWorkForOpaqueAndForTransparentPixels) {
    for (uint32_t value = 0; value <= 0xFFFF; ++value) {
        const auto color = static_cast<uint16_t>(value);
        const RGBA16 opaque{color, static_cast<uint16_t>(~color), color, kFullScale};
        ASSERT_EQ(OverTransparentWhite(opaque), opaque);
        ASSERT_EQ(OverTransparentWhite({color, 7, color, 0}), (RGBA16{0xFF00, 0xFF00, 0xFF00, 0}));
    }
}

}  // namespace
}  // namespace imgbasic
