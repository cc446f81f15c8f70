#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// A buffer of a host's, at addresses of its own, whose neighbourhood is not mapped.
class HostBuffer {
  public:
    static constexpr size_t kLargestImage = 64 * 64;  ///< pixels
    static constexpr size_t kLargestSpan =
        6500000000;  ///< pixels of an image that is not all there

    HostBuffer();
    HostBuffer(const HostBuffer&) = delete;
    HostBuffer& operator=(const HostBuffer&) = delete;

    /// An image of up to kLargestImage pixels, filled from `seed`, that begins at the first mapped
    /// byte or ends at the last one.
    RGBA16* Image(size_t count, bool atEnd, uint32_t seed);

    /// An image of up to kLargestSpan pixels, of which the pages of the rectangle alone are mapped
    /// until HidePart.
    RGBA16* Part(int32_t width, const PixelRect& rect);
    void HidePart();

  private:
    uint8_t* small_;
    uint8_t* huge_;
    std::vector<uint8_t*> exposed_;
};

}  // namespace imgbasic
