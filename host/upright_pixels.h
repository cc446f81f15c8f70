#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

/// Puts the rows of a file, as they come, where they belong in the upright picture.
class UprightPixels {
  public:
    /// `width` x `height` is the file's size, `orientation` 1 to 8 as EXIF counts; anything else
    /// counts as 1, upright.
    UprightPixels(int32_t width, int32_t height, int orientation);

    /// Room for the next `count` whole rows of the file, to be filled before Place.
    std::span<RGBA16> NextRows(size_t count);

    /// Puts those rows where they belong.
    void Place();

    /// The picture, once all rows are there.
    std::vector<RGBA16> Take() { return std::move(pixels_); }

  private:
    size_t width_;
    bool isUpright_;
    ptrdiff_t next_ = 0;   ///< where the next row's first pixel goes
    ptrdiff_t stepX_ = 1;  ///< from a pixel of the file to the one beside it
    ptrdiff_t stepY_ = 0;  ///< and to the one below
    std::vector<RGBA16> pixels_;
    std::vector<RGBA16> turning_;  ///< rows that are not where they belong yet
};

}  // namespace imgbasic::host
