#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// Looks up `count` pixels by their indices.
using WriteColorsForm = void(RGBA16* row, const RGBA16* colors, const uint8_t* indices,
                             size_t count, Store store);
WriteColorsForm WriteColorsScalar;
WriteColorsForm WriteColorsAvx2;

}  // namespace imgbasic
