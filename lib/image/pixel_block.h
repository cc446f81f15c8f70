#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "lib/image/rgba16.h"

namespace imgbasic {

struct PixelBlockDeleter {
    void operator()(RGBA16* block) const { std::free(block); }
};

/// The pixels of an image of the module's own.
using PixelBlock = std::unique_ptr<RGBA16[], PixelBlockDeleter>;

/// `width` x `height` zeroed pixels; null when the memory for them cannot be had. A size that is
/// not positive gives a block of no pixels, which is not null.
PixelBlock AllocatePixels(int32_t width, int32_t height);

}  // namespace imgbasic
