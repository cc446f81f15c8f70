#pragma once

#include <functional>

#include "host/raster_file.h"

namespace imgbasic::host {

/// Changes a strip of a picture in place, rows of `width` pixels each.
using StripChange = std::function<void(std::vector<RGBA16>& rows, int32_t width)>;

/// ReadRaster for a file of 8 bits a channel that is opaque by its header, every strip of which
/// goes through `change` as it comes from the file. `change` gets the rows as the file has them,
/// perhaps not upright, and leaves them as many and opaque; what it throws goes through. The
/// picture comes in `rgb`.
Picture ReadRasterInStrips(const RasterInput& input, const StripChange& change,
                           std::vector<std::string>& notes);

}  // namespace imgbasic::host
