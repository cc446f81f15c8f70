#include "lib/image/point/channels.h"

#include "tests/image/kernel_test.h"

namespace imgbasic {
namespace {

TEST(Channels, TruncatePercentagesAndWrapHostileOnes) {
    EXPECT_EQ(PercentOf(kFullScale, 50), 32640);
    EXPECT_EQ(PercentOf(199, 1), 1);
    EXPECT_EQ(PercentOf(199, 0xFFFF'FFFF), 0xFFFF) << "-199 / 100 is -1";
    for (uint32_t value = 0; value <= 0xFFFF; ++value) {
        ASSERT_EQ(PercentOf(static_cast<uint16_t>(value), 100), value);
    }
}

class ChannelForms : public KernelTest {};

TEST_P(ChannelForms, EqualTheScalarForm) {
    for (const Channel channel : {Channel::R, Channel::G, Channel::B, Channel::A}) {
        for (const Store store : {Store::Cached, Store::Streaming}) {
            ExpectEqualForms(GetParam(), 1, [=](RGBA16* dst, const RGBA16* src, size_t count) {
                IsolateChannel(dst, src, count, channel, store);
            });
        }
        for (const uint32_t percent : {0U, 1U, 50U, 99U, 100U, 40000U, 0x8000'0000U, ~0U}) {
            ExpectEqualForms(GetParam(), 1, [=](RGBA16* dst, const RGBA16* src, size_t count) {
                ReplaceChannel(dst, src, count, channel, percent);
            });
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, ChannelForms, kVectorLevels);

}  // namespace
}  // namespace imgbasic
