#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/file_metadata.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

/// An opaque pixel of 8 bits a channel: red, green, blue.
using RGB8 = std::array<uint8_t, 3>;

/// One picture without layers.
struct Picture {
    int32_t width = 0;
    int32_t height = 0;
    int bitDepth = 8;  ///< bits a channel in the file, 8 or 16
    std::vector<RGBA16> pixels;
    std::shared_ptr<const FileMetadata> metadata{};  ///< null when there is none
    std::string format{};                            ///< of the file, as RasterHeader::format
    std::vector<RGB8> rgb{};  ///< instead of `pixels`, of an opaque picture of 8 bits
};

enum class RasterFormat { Png, Jpeg, WebP, Tiff };

/// What a file's header tells.
struct RasterHeader {
    int32_t width = 0;  ///< of the upright picture
    int32_t height = 0;
    int bitDepth = 8;
    bool isOpaque = false;  ///< the file has no alpha; false where the system does not tell
    std::string format{};   ///< such as "png"; empty where the system does not tell
    std::shared_ptr<const FileMetadata> metadata{};
};

/// Where the bytes of a file are.
struct RasterInput {
    std::string name;                    ///< for errors and notes
    std::string path{};                  ///< read from there, or, when that is empty,
    std::span<const std::byte> bytes{};  ///< these; borrowed
};

/// Decodes a flat file of a format that its content tells, turned upright and as sRGB or what its
/// own profile says, with alpha; of several pages the first. `notes` get what cannot be kept as
/// the file means it. Throws FileError, also when a part is missing, and, before it takes memory,
/// when that does not suffice for the picture.
Picture ReadRaster(const RasterInput& input, std::vector<std::string>& notes);

/// Reads the header only.
RasterHeader ReadRasterHeader(const RasterInput& input, std::vector<std::string>& notes);

/// ReadRaster for a file of `format` held in memory and nothing else.
Picture DecodeRaster(std::span<const std::byte> bytes, RasterFormat format, const std::string& name,
                     std::vector<std::string>& notes);

enum class TiffCompression { None, Lzw, Deflate, Group4 };

struct EncodeOptions {
    /// Gray, black and white or a palette instead of RGB where the pixels are such.
    bool compact = false;
    bool indexed = false;            ///< a palette or an error
    std::optional<int> quality{};    ///< 1 to 100, of JPEG; makes WebP lossy
    std::optional<int> zlibLevel{};  ///< 0 to 9, of PNG
    std::optional<TiffCompression> tiffCompression{};
};

/// Encodes the picture at its depth, where the format has it, with what the format has a place for
/// of its metadata; without an alpha channel when all pixels are opaque. JPEG gets them over
/// white. Lossless but for JPEG. What the format cannot keep is told in `notes`. `name` names it
/// in errors. Throws FileError.
std::vector<std::byte> EncodeRaster(const Picture& picture, RasterFormat format,
                                    const std::string& name, std::vector<std::string>& notes,
                                    const EncodeOptions& options = {});

/// The picture as a PNG of 8 bits a channel, reduced to at most 256 x 256 pixels. Throws
/// FileError.
std::vector<std::byte> EncodeThumbnail(const Picture& picture, const std::string& name);

/// The ICC profile of sRGB; empty where the system has none.
std::vector<std::byte> SrgbProfile();

}  // namespace imgbasic::host
