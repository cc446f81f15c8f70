#include "host/pixel_room.h"

#include <sys/mman.h>

#include <cstdint>

namespace imgbasic::host {

std::vector<RGBA16> RoomFor(size_t count) {
    constexpr uintptr_t kLargePage = uintptr_t{2} << 20U;
    std::vector<RGBA16> pixels;
    pixels.reserve(count);
    const auto begin = reinterpret_cast<uintptr_t>(pixels.data());
    const uintptr_t end = begin + count * sizeof(RGBA16);
    const uintptr_t first = (begin + kLargePage - 1) / kLargePage * kLargePage;
    if (first < end) {
        // Only advice; without it the room is the same.
        (void)madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
    }
    return pixels;
}

}  // namespace imgbasic::host
