#pragma once

#include <cstdint>
#include <memory>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// A 32-bit bitmap of the part of a host buffer, `width` pixels a row, inside `rect`, which lies
/// within the buffer. Null for an empty rectangle or when memory runs out.
std::unique_ptr<KVBitmap> MakeWorkBitmap(const RGBA16* buffer, int32_t width, PixelRect rect);

}  // namespace imgbasic
