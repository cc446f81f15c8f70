#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/document.h"

namespace imgbasic::host {

/// Bytes of a picture, by default of a layer's.
constexpr double PictureBytes(int64_t width, int64_t height, size_t pixelSize = sizeof(RGBA16)) {
    return static_cast<double>(width) * static_cast<double>(height) *
           static_cast<double>(pixelSize);
}

/// Bytes that a run of the filter over a whole document takes beside that: for what its layers show
/// together, and for the pictures of `width` x `height` pixels that the filter makes of it.
double BytesForRun(const std::string& filter, const Document& document, int32_t width,
                   int32_t height);

/// Throws FileError, naming `file`, when `bytes`, needed for `width` x `height` pixels, do not fit
/// the memory that is free now.
void RequireMemory(const std::string& file, int64_t width, int64_t height, double bytes);

}  // namespace imgbasic::host
