#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/store.h"

namespace imgbasic {

/// Calls `row(dst, src, count, store)` for runs of `count` neighbouring pixels that together make
/// up `rect`, top to bottom. Both buffers are `width` pixels wide and contain `rect`; whole-width
/// rectangles are one run. The kernel need not handle a `dst` that partly overlaps `src`; `Dst` may
/// be less than a whole pixel.
template <typename Dst, typename RowFunction>
void ForEachRun(Dst* dst, const RGBA16* src, int32_t width, PixelRect rect, RowFunction&& row) {
    if (rect.IsEmpty()) {
        return;
    }
    const auto stride = static_cast<size_t>(width);
    const auto columns = static_cast<size_t>(rect.Width());
    const auto rows = static_cast<size_t>(rect.Height());
    const Store store = StoreFor(columns * rows);
    size_t first = static_cast<size_t>(rect.top) * stride + static_cast<size_t>(rect.left);
    if (columns == stride) {
        row(dst + first, src + first, columns * rows, store);
        return;
    }
    for (size_t y = 0; y < rows; ++y, first += stride) {
        row(dst + first, src + first, columns, store);
    }
}

}  // namespace imgbasic
