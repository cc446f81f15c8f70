#pragma once

#include <cstdint>
#include <memory>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/palette/reduce_palette.h"

namespace imgbasic {

/// How pixels get their palette entry.
enum DitherKind : int32_t {
    NoDither = 0,
    OrderedDither = 1,
    SmallDiffusion = 2,  ///< spreads the error of the pixel's own colour
    LargeDiffusion = 3   ///< spreads the error of what the pixel became by diffusion
};

/// A new indexed bitmap that shows a 32-bit bitmap in the palette's colours; fully transparent
/// pixels count as colour zero. Null for a missing or indexed bitmap, one without pixels, a
/// palette of no or more than 256 entries, another dither kind, or when memory runs out.
std::unique_ptr<KVBitmap> MapToIndexed(const ReducePalette& palette, const KVBitmap* bitmap,
                                       int32_t ditherKind);

}  // namespace imgbasic
