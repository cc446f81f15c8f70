#include "lib/base/zeroed_block.h"

#include <limits>
#include <optional>

namespace imgbasic {
namespace {

std::optional<int> blocksLeft;

}  // namespace

ZeroedBlock AllocateZeroed(uint64_t size) noexcept {
    if (size == 0 || size > static_cast<uint64_t>(std::numeric_limits<ptrdiff_t>::max())) {
        return nullptr;
    }
    if (blocksLeft.has_value() && (*blocksLeft)-- <= 0) {
        return nullptr;
    }
    return ZeroedBlock(static_cast<uint8_t*>(std::calloc(static_cast<size_t>(size), 1)));
}

ScopedBlockLimit::ScopedBlockLimit(int blocks) {
    blocksLeft = blocks;
}

ScopedBlockLimit::~ScopedBlockLimit() {
    blocksLeft.reset();
}

}  // namespace imgbasic
