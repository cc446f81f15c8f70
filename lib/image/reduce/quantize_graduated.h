#pragma once

#include <cstdint>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/palette/color_rows.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// Chooses a palette of at most `target` colours (below 1: one) by halving: 256 colours first,
/// then half as many for the image as those show it, and so on. False as QuantizeRows.
bool QuantizeGraduated(ReducePalette& palette, ColorRows& rows, int32_t target);

/// The same for a bitmap. False as QuantizePalette, and for a bitmap with an identifier.
bool QuantizeGraduated(ReducePalette& palette, const KVBitmap* bitmap, int32_t target);

}  // namespace imgbasic
