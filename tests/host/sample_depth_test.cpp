#include "host/sample_depth.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace imgbasic::host {
namespace {

TEST(SampleDepth, NoValueOfAFileChangesOnTheWayThereAndBack) {
    for (int value = 0; value < 256; ++value) {
        ASSERT_EQ(ToDepth8(FromDepth8(static_cast<uint8_t>(value))), value);
    }
    // 65,536 values cannot all be kept apart by 65,281; but a value read again is stable.
    for (int value = 0; value < 65536; ++value) {
        const uint16_t read = FromDepth16(static_cast<uint16_t>(value));
        ASSERT_EQ(FromDepth16(ToDepth16(read)), read) << value;
        ASSERT_LE(read, kFullScale);
        ASSERT_LE(std::abs(ToDepth16(read) - value), 1) << value;
    }
    EXPECT_EQ(FromDepth8(255), kFullScale);
    EXPECT_EQ(FromDepth16(65535), kFullScale);
}

TEST(SampleDepth, SixteenBitFilesKeepEveryValueOfADocument) {
    for (int value = 0; value <= kFullScale; ++value) {
        const auto channel = static_cast<uint16_t>(value);
        ASSERT_EQ(FromDepth16(ToDepth16(channel)), channel);
        // The nearest 8-bit value, the higher one in the middle.
        const int back = ToDepth8(channel) * 256 - value;
        ASSERT_TRUE(back > -128 && back <= 128) << value;
    }
}

TEST(SampleDepth, ValuesBeyondFullScaleStayInTheFile) {
    EXPECT_EQ(ToDepth8(0xFFFF), 255);
    EXPECT_EQ(ToDepth16(0xFFFF), 65535);
}

}  // namespace
}  // namespace imgbasic::host
