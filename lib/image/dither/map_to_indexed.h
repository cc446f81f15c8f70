#pragma once

#include <cstdint>
#include <memory>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/dither/row_mapper.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// A new indexed bitmap that shows a 32-bit bitmap in the palette's colours; fully transparent
/// pixels count as colour zero. Null for a missing or indexed bitmap, one without pixels, a
/// palette of no or more than 256 entries, another dither kind, or when memory runs out.
std::unique_ptr<KVBitmap> MapToIndexed(const ReducePalette& palette, const KVBitmap* bitmap,
                                       int32_t ditherKind);

}  // namespace imgbasic
