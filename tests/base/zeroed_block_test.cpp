#include "lib/base/zeroed_block.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace imgbasic {
namespace {

TEST(ZeroedBlock, IsZeroedWritableAndFreedAtEverySize) {
    // Around the sizes from which blocks are mappings of their own.
    for (const uint64_t size :
         {uint64_t{1}, (uint64_t{4} << 20) - 1, uint64_t{4} << 20, (uint64_t{5} << 20) + 3}) {
        const ZeroedBlock block = AllocateZeroed(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(std::count(block.get(), block.get() + size, 0), static_cast<ptrdiff_t>(size));
        block[size - 1] = 1;
    }
}

TEST(ZeroedBlock, IsNullWhenThereIsNoSuchMemory) {
    EXPECT_EQ(AllocateZeroed(0), nullptr);
    EXPECT_EQ(AllocateZeroed(uint64_t{1} << 62), nullptr);
    EXPECT_EQ(AllocateZeroed(UINT64_MAX), nullptr);
}

}  // namespace
}  // namespace imgbasic
