#include "tests/image/scarce_memory.h"

#include <climits>
#include <cstdlib>
#include <new>

static int allocationsLeft = INT_MAX;
static long liveBlocks = 0;

void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
    const bool allowed = allocationsLeft == INT_MAX || allocationsLeft-- > 0;
    void* const block = allowed ? std::malloc(size) : nullptr;
    liveBlocks += block != nullptr ? 1 : 0;
    return block;
}

void* operator new(size_t size) {
    void* const block = operator new(size, std::nothrow);
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    liveBlocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

void operator delete(void* block, size_t /*size*/) noexcept {
    operator delete(block);
}

namespace imgbasic {

ScopedAllocationLimit::ScopedAllocationLimit(int allocations) {
    allocationsLeft = allocations;
}

ScopedAllocationLimit::~ScopedAllocationLimit() {
    allocationsLeft = INT_MAX;
}

bool ScopedAllocationLimit::IsPassed() const {
    return allocationsLeft < 0;
}

long LiveAllocations() {
    return liveBlocks;
}

}  // namespace imgbasic
