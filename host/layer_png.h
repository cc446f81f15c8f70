#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/raster_file.h"

namespace imgbasic::host {

// The PNG files inside an OpenRaster archive.

/// Bytes at the beginning of a PNG that tell its size.
constexpr size_t kPngHeaderSize = 33;

struct PngHeader {
    int32_t width = 0;
    int32_t height = 0;
    int bitDepth = 8;  ///< 16, or 8 for everything below
};

/// What the first kPngHeaderSize bytes of a file tell; nothing when it is no PNG.
std::optional<PngHeader> PngHeaderOf(std::span<const std::byte> head);

/// A PNG with the profile of sRGB in it: some programs ask for one, an sRGB chunk does not do.
std::vector<std::byte> WithSrgbProfile(std::vector<std::byte> png);

}  // namespace imgbasic::host
