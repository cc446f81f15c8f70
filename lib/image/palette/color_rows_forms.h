#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// The visible colours of `count` host pixels.
using VisibleColorsForm = void(uint32_t* colors, const RGBA16* pixels, size_t count);
VisibleColorsForm VisibleColorsScalar;
VisibleColorsForm VisibleColorsAvx2;

}  // namespace imgbasic
