#include <vector>

#include "fuzz/checks.h"
#include "host/image_file.h"
#include "host/raster_file.h"

namespace imgbasic {
namespace {

using namespace host;

constexpr const char* kName = "fuzz";
constexpr int32_t kLargestSide = 256;

/// Nothing when the file is rejected, or too large to be read often.
std::optional<Picture> Read(std::span<const std::byte> bytes, std::string& fault) {
    const RasterInput input{.name = kName, .bytes = bytes};
    std::vector<std::string> notes;
    try {
        const RasterHeader header = ReadRasterHeader(input, notes);
        if (header.width > kLargestSide || header.height > kLargestSide) {
            return std::nullopt;
        }
        Picture picture = ReadRaster(input, notes);
        if (picture.width != header.width || picture.height != header.height ||
            picture.pixels.size() != PixelCount(header.width, header.height)) {
            fault = "other size than the header's";
        }
        return picture;
    } catch (const FileError& error) {
        const std::string_view message = error.what();
        const bool isSentence = message.starts_with("fuzz: ") && message.find('\n') == message.npos;
        fault = isSentence ? "" : "unclear message: " + std::string(message);
        return std::nullopt;
    }
}

}  // namespace

std::string CheckRaster(std::span<const uint8_t> data) {
    std::string fault;
    const std::optional<Picture> picture = Read(std::as_bytes(data), fault);
    if (!picture || !fault.empty()) {
        return fault;
    }
    constexpr RasterFormat kLossless[] = {RasterFormat::Png, RasterFormat::Tiff,
                                          RasterFormat::WebP};
    const RasterFormat format = kLossless[data.size() % (picture->bitDepth == 8 ? 3 : 2)];
    std::vector<std::string> notes;
    try {
        const EncodeOptions options{.compact = data.size() % 4 < 2};
        const auto file = EncodeRaster(*picture, format, kName, notes, options);
        const Picture again = DecodeRaster(file, format, kName, notes);
        return again.pixels == picture->pixels ? "" : "other pixels when written and read again";
    } catch (const FileError& error) {
        return std::string("cannot be written and read again: ") + error.what();
    }
}

}  // namespace imgbasic
