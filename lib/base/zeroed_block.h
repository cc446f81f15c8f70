#pragma once

#include <cstdint>
#include <memory>

namespace imgbasic {

struct FreeBlock {
    uint64_t mappedSize = 0;  ///< of a block that is a mapping of its own, else 0

    void operator()(uint8_t* block) const noexcept;
};

/// The one owner of a block of bytes that were zero when it was allocated, aligned for any
/// fundamental type. Pixels and look-up tables live in such blocks.
using ZeroedBlock = std::unique_ptr<uint8_t[], FreeBlock>;

/// A block of `size` bytes; null when the memory cannot be had or `size` is 0. Never throws.
/// Large blocks come zeroed from the system, so that nothing is touched before it is used.
ZeroedBlock AllocateZeroed(uint64_t size) noexcept;

/// While it lives, AllocateZeroed gives out no more than `blocks` further blocks and then fails:
/// the way for tests to reach what happens when memory runs out. One at a time, one thread.
class ScopedBlockLimit {
  public:
    explicit ScopedBlockLimit(int blocks);
    ~ScopedBlockLimit();
    ScopedBlockLimit(const ScopedBlockLimit&) = delete;
    ScopedBlockLimit& operator=(const ScopedBlockLimit&) = delete;
};

}  // namespace imgbasic
