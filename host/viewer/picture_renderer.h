#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic::viewer {

/// Pixels as they are drawn, width x height.
struct FlatPicture {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<RGBA16> pixels{};
};

/// Where a picture lies in a window: the picture's point p is at p * zoom + left (or top).
struct PicturePlace {
    double zoom = 1;
    double left = 0;
    double top = 0;
};

/// Draws the part `area` of a window, rows top to bottom without padding, as 0x00RRGGBB: the
/// picture over a checkerboard of `cell` pixels, and around it `around`. Enlarged pixels stay
/// sharp; reduced ones are means.
void RenderPicture(const FlatPicture& picture, const PicturePlace& place, const PixelRect& area,
                   int cell, uint32_t around, std::span<uint32_t> out);

}  // namespace imgbasic::viewer
