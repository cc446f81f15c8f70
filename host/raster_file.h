#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

/// One picture without layers.
struct Picture {
    int32_t width = 0;
    int32_t height = 0;
    int bitDepth = 8;  ///< bits a channel in the file, 8 or 16
    std::vector<RGBA16> pixels;
};

enum class RasterFormat { Png, Jpeg, WebP, Tiff };

/// Decodes a file of `format` held in memory, turned upright and as sRGB with alpha; of several
/// pages the first, with a note added to `notes`. `name` names it in errors. Throws FileError,
/// also when a part is missing and when the memory does not suffice.
Picture DecodeRaster(std::span<const std::byte> bytes, RasterFormat format, const std::string& name,
                     std::vector<std::string>& notes);

/// The same for the file at `path`.
Picture ReadRasterFile(const std::string& path, RasterFormat format,
                       std::vector<std::string>& notes);

/// Encodes the picture at its depth, where the format has it; without an alpha channel when all
/// pixels are opaque. JPEG gets them over white. Lossless but for JPEG. What the format cannot
/// keep is told in `notes`. `name` names it in errors. Throws FileError.
std::vector<std::byte> EncodeRaster(const Picture& picture, RasterFormat format,
                                    const std::string& name, std::vector<std::string>& notes);

/// The picture as a PNG of 8 bits a channel, reduced to at most 256 x 256 pixels. Throws
/// FileError.
std::vector<std::byte> EncodeThumbnail(const Picture& picture, const std::string& name);

}  // namespace imgbasic::host
