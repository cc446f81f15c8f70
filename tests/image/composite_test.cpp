#include "lib/image/composite.h"

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

TEST(CompositeOver, GivesTheWorkedNumbers) {
    constexpr struct {
        RGBA16 backdrop;
        RGBA16 source;
        RGBA16 result;
    } kCases[] = {
        {{1, 2, 3, 4}, {9, 9, 9, 0}, {1, 2, 3, 4}},
        {{0, 0xFF00, 0, 0xFF00}, {1000, 2000, 3000, 0xFF00}, {1000, 2000, 3000, 0xFF00}},
        {{0, 0, 0xFF00, 0xFF00}, {0xFF00, 0, 1, 0x7F80}, {0x7F80, 0, 0x7F80, 0xFF00}},
        {{0, 300, 0, 0x7F80}, {0xFF00, 300, 3, 0x7F80}, {43520, 300, 2, 0xBF40}},
        // Beyond full opacity a colour can leave 16 bits on either side: 65792 and -257.
        {{0, 0xFFFF, 5, 0xFFFF}, {0xFFFF, 0, 5, 0xFFFF}, {256, 65279, 5, 65279}},
    };
    for (const auto& c : kCases) {
        RGBA16 result = c.backdrop;
        CompositeOver(result, c.source);
        EXPECT_EQ(result, c.result);
    }
}

TEST(OverTransparentWhite, IsIntegerWorkForOpaqueAndForTransparentPixels) {
    for (uint32_t value = 0; value <= 0xFFFF; ++value) {
        const auto color = static_cast<uint16_t>(value);
        const auto other = static_cast<uint16_t>(~value);
        const RGBA16 opaque{color, other, color, kFullScale};
        ASSERT_EQ(OverTransparentWhite(opaque), opaque);
        ASSERT_EQ(OverTransparentWhite({other, color, other, 0}),
                  (RGBA16{kFullScale, kFullScale, kFullScale, 0}));
    }
}

}  // namespace
}  // namespace imgbasic
