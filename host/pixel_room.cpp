#include "host/pixel_room.h"

#ifndef _WIN32
#include <sys/mman.h>
#endif

#include <cstdint>

namespace imgbasic::host {

void PreferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] size_t bytes) {
#ifndef _WIN32
    constexpr size_t kLargePage = size_t{2} << 20U;
    auto* const begin = static_cast<std::byte*>(memory);
    const size_t toPage =
        (kLargePage - reinterpret_cast<uintptr_t>(begin) % kLargePage) % kLargePage;
    if (toPage < bytes) {
        // Only advice; without it the room is the same.
        (void)madvise(begin + toPage, bytes - toPage, MADV_HUGEPAGE);
    }
#endif
}

}  // namespace imgbasic::host
