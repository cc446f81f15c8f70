#pragma once

#include <cstdint>
#include <optional>

#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// A rectangle of an image, in pixels and fractions of them.
struct ResampleRect {
    double x;
    double y;
    double width;
    double height;
};

/// What is drawn into: `rect` of an image of `width` x `height` packed pixels. The caller's buffer.
struct ResampleTarget {
    RGBA16* pixels;
    int32_t width;
    int32_t height;
    ResampleRect rect;
};

/// What is drawn: `rect` of an image of `width` x `height` packed pixels. A negative size in
/// `rect` means the image's. The caller's buffer, which must not overlap the target's.
struct ResampleSource {
    const RGBA16* pixels;
    int32_t width;
    int32_t height;
    ResampleRect rect;
};

/// How ResampleBilinear takes a sample outside the clip rectangle. With any other value the clip
/// rectangle is not looked at: what lies outside the image is transparent.
enum BoundaryKind : int32_t {
    BoundaryClip = 0,    ///< as transparent: the edges fade
    BoundaryClamp = 1,   ///< the nearest pixel inside
    BoundaryRepeat = 2,  ///< the clip rectangle repeats like a tile
};

// The three kernels draw the source rectangle, scaled, into the destination rectangle, each of
// them clipped to its image first. Only source pixels inside `clip` (the whole image when there
// is none) take part. A destination pixel without a result keeps what it holds; a pixel that the
// rectangle covers in part gets that part of the alpha. Colour is averaged weighted by alpha.
// Empty sizes, null buffers and rectangles that are not finite (or reach beyond 2^490) draw
// nothing. No kernel raises a floating-point exception other than of inexact results and of
// underflow, and one that runs out of memory (std::bad_alloc) has drawn nothing.

/// The source pixel under each destination pixel's top left corner; transparent ones are skipped.
void ResampleNearest(const ResampleTarget& destination, const ResampleSource& source,
                     std::optional<PixelRect> clip = std::nullopt);

/// The mean over the area that each destination pixel covers in the source.
void ResampleAverage(const ResampleTarget& destination, const ResampleSource& source,
                     std::optional<PixelRect> clip = std::nullopt);

/// The four source pixels around each destination pixel's centre, weighted by nearness. With
/// `fadeAlpha`, alpha fades where less than 85 % of that weight lies inside the clip rectangle
/// (never for BoundaryClip, which fades by itself).
void ResampleBilinear(int32_t boundary, bool fadeAlpha, const ResampleTarget& destination,
                      const ResampleSource& source, std::optional<PixelRect> clip = std::nullopt);

}  // namespace imgbasic
