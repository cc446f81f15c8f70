#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace imgbasic {

/// A rectangle in pixels; right and bottom are exclusive.
struct PixelRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool IsEmpty() const { return left >= right || top >= bottom; }

    /// 64 bits, since a hostile rectangle spans more than an int32_t holds.
    int64_t Width() const { return int64_t{right} - left; }
    int64_t Height() const { return int64_t{bottom} - top; }

    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// The part of `rect` inside an image of `width` x `height` pixels; (0, 0, 0, 0) when there is
/// none, whatever the coordinates and sizes.
inline PixelRect ClipToImage(PixelRect rect, int32_t width, int32_t height) {
    const PixelRect clipped{std::max(rect.left, 0), std::max(rect.top, 0),
                            std::min(rect.right, width), std::min(rect.bottom, height)};
    return clipped.IsEmpty() ? PixelRect{} : clipped;
}

/// Pixels of an image of `width` x `height`; 0 when either is not positive.
inline size_t PixelCount(int32_t width, int32_t height) {
    return width > 0 && height > 0 ? static_cast<size_t>(width) * static_cast<size_t>(height) : 0;
}

}  // namespace imgbasic
