#include "host/upright_pixels.h"

#include "host/pixel_room.h"
#include "host/raster_file.h"

namespace imgbasic::host {

template <typename Pixel>
UprightPixels<Pixel>::UprightPixels(int32_t width, int32_t height, int orientation)
    : width_(static_cast<size_t>(width)),
      isUpright_(orientation<2 || orientation> 8),
      pixels_(RoomFor<Pixel>(static_cast<size_t>(width) * static_cast<size_t>(height))) {
    if (isUpright_) {
        return;
    }
    const ptrdiff_t w = width;
    const ptrdiff_t h = height;
    pixels_.resize(static_cast<size_t>(w * h));
    // Where the file's first pixel goes, and its neighbours; 5 to 8 turn rows into columns.
    const bool fromRight = orientation == 2 || orientation == 3;
    const bool fromBottom = orientation == 3 || orientation == 4;
    const bool columnsFromRight = orientation == 6 || orientation == 7;
    const bool columnsFromBottom = orientation == 7 || orientation == 8;
    if (orientation <= 4) {
        stepX_ = fromRight ? -1 : 1;
        stepY_ = fromBottom ? -w : w;
        next_ = (fromRight ? w - 1 : 0) + (fromBottom ? (h - 1) * w : 0);
    } else {
        stepX_ = columnsFromBottom ? -h : h;
        stepY_ = columnsFromRight ? -1 : 1;
        next_ = (columnsFromRight ? h - 1 : 0) + (columnsFromBottom ? (w - 1) * h : 0);
    }
}

template <typename Pixel>
void UprightPixels<Pixel>::Add(std::span<const Pixel> rows) {
    if (isUpright_) {
        pixels_.insert(pixels_.end(), rows.begin(), rows.end());
        return;
    }
    const size_t count = rows.size() / width_;
    // Down the columns, since the rows of a strip are neighbours in a turned picture.
    for (size_t x = 0; x < width_; ++x) {
        ptrdiff_t at = next_ + static_cast<ptrdiff_t>(x) * stepX_;
        for (size_t y = 0; y < count; ++y) {
            pixels_[static_cast<size_t>(at)] = rows[y * width_ + x];
            at += stepY_;
        }
    }
    next_ += static_cast<ptrdiff_t>(count) * stepY_;
}

template class UprightPixels<RGBA16>;
template class UprightPixels<RGB8>;

}  // namespace imgbasic::host
