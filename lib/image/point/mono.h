#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// Writes `count` pixels of `src`, seen over transparent white, to `dst`, which may be the same
/// buffer: white (kFullScale) where the red channel is at least `level`, else black. Green and blue
/// do not matter; alpha is what compositing makes of it. Any level and channel value will do.
void ToTwoLevels(RGBA16* dst, const RGBA16* src, size_t count, int32_t level, Store store);

}  // namespace imgbasic
