#pragma once

#include <cstdint>
#include <span>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/palette/color_rows.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// Chooses a palette for an image: its own colours in order of first appearance when they are few
/// enough, else colours from a median cut over coarse colours. A negative `countSpec` asks for at
/// most -countSpec colours (256 at most), another one for at most 2 to the power of it (8 at most).
/// False for an image without pixels or with 2^32 of them, or when memory runs out; throws
/// std::bad_alloc for small amounts of it.
bool QuantizeRows(ReducePalette& palette, ColorRows& rows, int32_t countSpec);

/// The same for an image that is given by its distinct colours and their pixel counts; those that
/// are fully transparent count as colour zero.
bool QuantizeCounted(ReducePalette& palette, std::span<const KVColorPalette> counted,
                     int32_t countSpec);

/// The same for a 32-bit bitmap. Fully transparent pixels count as colour zero. False also for a
/// missing or indexed bitmap.
bool QuantizePalette(ReducePalette& palette, const KVBitmap* bitmap, int32_t countSpec);

}  // namespace imgbasic
