#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace imgbasic::host {

/// Puts the rows of a file, as they come, where they belong in the upright picture. `Pixel` is
/// RGBA16 or RGB8.
template <typename Pixel>
class UprightPixels {
  public:
    /// `width` x `height` is the file's size, `orientation` 1 to 8 as EXIF counts; anything else
    /// counts as 1, upright.
    UprightPixels(int32_t width, int32_t height, int orientation);

    /// Takes the next rows of the file, whole ones.
    void Add(std::span<const Pixel> rows);

    /// The picture, once all rows are there.
    std::vector<Pixel> Take() { return std::move(pixels_); }

  private:
    size_t width_;
    bool isUpright_;
    ptrdiff_t next_ = 0;   ///< where the next row's first pixel goes
    ptrdiff_t stepX_ = 1;  ///< from a pixel of the file to the one beside it
    ptrdiff_t stepY_ = 0;  ///< and to the one below
    std::vector<Pixel> pixels_;
};

}  // namespace imgbasic::host
