#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// The pixel word of a host pixel. A channel v becomes (v + 127) >> 8, at most 256, and the four
/// are added into the word, each at its place. 256, from values above 0xFF80, carries into the
/// next higher channel; alpha's carry is lost.
constexpr uint32_t WorkWord(RGBA16 pixel) {
    const auto scaled = [](uint16_t value) { return (uint32_t{value} + 127) >> 8; };
    return (scaled(pixel.a) << 24) + (scaled(pixel.r) << 16) + (scaled(pixel.g) << 8) +
           scaled(pixel.b);
}

/// An image as colour reduction reads it, row by row: the visible colours (see VisibleColor) of a
/// 32-bit bitmap, or of a part of a host buffer. A row is converted whenever it is asked for, which
/// takes less than to keep the colours of a large image and to read them back.
class ColorRows {
  public:
    /// No rows for a missing or indexed bitmap, or one without pixels. Otherwise the bitmap must
    /// live as long.
    explicit ColorRows(const KVBitmap* bitmap);
    /// `width` pixels a row in the buffer; `rect` lies within it.
    ColorRows(const RGBA16* buffer, int32_t width, PixelRect rect);

    size_t Width() const { return row_.size(); }
    int32_t Height() const { return height_; }
    size_t PixelCount() const { return Width() * static_cast<size_t>(height_); }
    /// The colours of row `y`, until another row is asked for.
    std::span<const uint32_t> Row(int32_t y);
    /// The host pixels that the row after row `y` will be converted from; null where there is none.
    const RGBA16* Ahead(int32_t y) const;

  private:
    const uint32_t* words_ = nullptr;  ///< of a bitmap, else null
    const RGBA16* pixels_ = nullptr;   ///< of a buffer: where the first row begins
    size_t stride_ = 0;                ///< from row to row, in pixels
    int32_t height_ = 0;
    std::vector<uint32_t> row_;
};

}  // namespace imgbasic
