#pragma once

#include <cstdint>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/palette/counted_colors.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// Chooses a palette for a 32-bit bitmap: its own colours in order of first appearance when they
/// are few enough, else colours from a median cut over coarse colours. Fully transparent pixels
/// count as colour zero. A negative `countSpec` asks for at most -countSpec colours (256 at
/// most), another one for at most 2 to the power of it (8 at most). False for a missing or
/// indexed bitmap, one without pixels or with 2^32 of them, or when memory runs out; throws
/// std::bad_alloc for small amounts of it.
bool QuantizePalette(ReducePalette& palette, const KVBitmap* bitmap, int32_t countSpec);

/// The same for an image that is given by its colours.
bool QuantizeColors(ReducePalette& palette, const CountedColors& image, int32_t countSpec);

}  // namespace imgbasic
