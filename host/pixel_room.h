#pragma once

#include <cstddef>
#include <vector>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

/// Asks the system for large pages where it has such: taking memory in small ones costs more than
/// filling it.
void PreferLargePages(void* memory, size_t bytes);

/// No pixels, but room for `count` of them.
template <typename Pixel>
std::vector<Pixel> RoomFor(size_t count) {
    std::vector<Pixel> pixels;
    pixels.reserve(count);
    PreferLargePages(pixels.data(), count * sizeof(Pixel));
    return pixels;
}

/// So many pixels, all zero.
inline std::vector<RGBA16> ZeroPixels(size_t count) {
    std::vector<RGBA16> pixels = RoomFor<RGBA16>(count);
    pixels.assign(count, RGBA16{});  // faster than resize, which copies the first one
    return pixels;
}

}  // namespace imgbasic::host
