#include "lib/base/zeroed_block.h"

#include <cstdlib>
#include <limits>
#include <optional>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace imgbasic {
namespace {

std::optional<int> blocksLeft;

#ifdef __linux__
constexpr uint64_t kHugePage = uint64_t{2} << 20;

/// The first touch of every 4 KB page costs as much as several passes over it, so a large block
/// asks for huge pages.
ZeroedBlock MapLarge(uint64_t size) noexcept {
    void* block = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED) {
        return nullptr;
    }
    madvise(block, size, MADV_HUGEPAGE);
    return {static_cast<uint8_t*>(block), FreeBlock{size}};
}
#endif

}  // namespace

void FreeBlock::operator()(uint8_t* block) const noexcept {
#ifdef __linux__
    if (mappedSize != 0) {
        munmap(block, mappedSize);
        return;
    }
#endif
    std::free(block);
}

ZeroedBlock AllocateZeroed(uint64_t size) noexcept {
    if (size == 0 || size > static_cast<uint64_t>(std::numeric_limits<ptrdiff_t>::max())) {
        return nullptr;
    }
    if (blocksLeft.has_value() && (*blocksLeft)-- <= 0) {
        return nullptr;
    }
#ifdef __linux__
    if (size >= 2 * kHugePage) {
        return MapLarge(size);
    }
#endif
    return ZeroedBlock(static_cast<uint8_t*>(std::calloc(static_cast<size_t>(size), 1)));
}

ScopedBlockLimit::ScopedBlockLimit(int blocks) {
    blocksLeft = blocks;
}

ScopedBlockLimit::~ScopedBlockLimit() {
    blocksLeft.reset();
}

}  // namespace imgbasic
