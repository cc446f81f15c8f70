#pragma once

#include <cstddef>
#include <vector>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

/// No pixels, but room for `count` of them, in large pages where the system has such: taking
/// memory in small ones costs more than filling it.
std::vector<RGBA16> RoomFor(size_t count);

/// So many pixels, all zero.
inline std::vector<RGBA16> ZeroPixels(size_t count) {
    std::vector<RGBA16> pixels = RoomFor(count);
    pixels.resize(count);
    return pixels;
}

}  // namespace imgbasic::host
