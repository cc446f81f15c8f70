#pragma once

#include <cstddef>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// The complement of every colour channel, kFullScale - value in wrapping 16-bit arithmetic;
/// alpha is kept and not looked at.
inline RGBA16 InvertTone(RGBA16 pixel) {
    return {static_cast<uint16_t>(kFullScale - pixel.r),
            static_cast<uint16_t>(kFullScale - pixel.g),
            static_cast<uint16_t>(kFullScale - pixel.b), pixel.a};
}

/// Writes InvertTone of `count` pixels of `src` to `dst`, which may be the same buffer.
void InvertTones(RGBA16* dst, const RGBA16* src, size_t count, Store store);

}  // namespace imgbasic
