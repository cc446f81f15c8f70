#pragma once

#include <cstdint>
#include <memory>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// A channel v becomes (v + 127) >> 8, at most 256, and the four are added into the word, each at
/// its place. 256, from values above 0xFF80, carries into the next higher channel; alpha's carry
/// is lost.
constexpr uint32_t WorkWord(RGBA16 pixel) {
    const auto scaled = [](uint16_t value) { return (uint32_t{value} + 127) >> 8; };
    return (scaled(pixel.a) << 24) + (scaled(pixel.r) << 16) + (scaled(pixel.g) << 8) +
           scaled(pixel.b);
}

/// A 32-bit bitmap of the part of a host buffer, `width` pixels a row, inside `rect`, which lies
/// within the buffer. Null for an empty rectangle or when memory runs out.
std::unique_ptr<KVBitmap> MakeWorkBitmap(const RGBA16* buffer, int32_t width, PixelRect rect);

/// Writes an indexed bitmap of the size of `rect` there, its 8-bit palette channels times 256.
void WriteIndexed(RGBA16* buffer, int32_t width, PixelRect rect, const KVBitmap& indexed);

}  // namespace imgbasic
