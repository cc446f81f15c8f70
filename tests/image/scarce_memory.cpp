#include "tests/image/scarce_memory.h"

#include <climits>
#include <cstdlib>
#include <new>

static int allocationsLeft = INT_MAX;

void* operator new(size_t size) {
    const bool allowed = allocationsLeft == INT_MAX || allocationsLeft-- > 0;
    void* const block = allowed ? std::malloc(size) : nullptr;
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, size_t /*size*/) noexcept {
    std::free(block);
}

namespace imgbasic {

ScopedAllocationLimit::ScopedAllocationLimit(int allocations) {
    allocationsLeft = allocations;
}

ScopedAllocationLimit::~ScopedAllocationLimit() {
    allocationsLeft = INT_MAX;
}

}  // namespace imgbasic
