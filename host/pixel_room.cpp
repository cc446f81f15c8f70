#include "host/pixel_room.h"

#ifndef _WIN32
#include <sys/mman.h>
#endif

#include <cstdint>

namespace imgbasic::host {

std::vector<RGBA16> RoomFor(size_t count) {
    std::vector<RGBA16> pixels;
    pixels.reserve(count);
#ifndef _WIN32
    constexpr size_t kLargePage = size_t{2} << 20U;
    auto* const begin = reinterpret_cast<std::byte*>(pixels.data());
    const size_t bytes = count * sizeof(RGBA16);
    const size_t toPage =
        (kLargePage - reinterpret_cast<uintptr_t>(begin) % kLargePage) % kLargePage;
    if (toPage < bytes) {
        // Only advice; without it the room is the same.
        (void)madvise(begin + toPage, bytes - toPage, MADV_HUGEPAGE);
    }
#endif
    return pixels;
}

}  // namespace imgbasic::host
