#include "lib/image/point/invert_tones.h"

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

TEST(InvertTone, WrapsAboveFullScaleAndKeepsAlpha) {
    EXPECT_EQ(InvertTone({0, 0xFF00, 0x8000, 0x1234}), (RGBA16{0xFF00, 0, 0x7F00, 0x1234}));
    EXPECT_EQ(InvertTone({0xFFFF, 0xFF01, 1, 0}), (RGBA16{0xFF01, 0xFFFF, 0xFEFF, 0}));
}

class InvertTonesForms : public KernelTest {};

TEST_P(InvertTonesForms, EqualTheScalarForm) {
    for (const Store store : {Store::Cached, Store::Streaming}) {
        ExpectEqualForms(GetParam(), 1, [store](RGBA16* dst, const RGBA16* src, size_t count) {
            InvertTones(dst, src, count, store);
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, InvertTonesForms, kVectorLevels);

}  // namespace
}  // namespace imgbasic
