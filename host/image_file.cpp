#include "host/image_file.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/atomic_file.h"
#include "host/flatten.h"
#include "host/openraster.h"
#include "host/raster_file.h"
#include "lib/base/ascii.h"

namespace imgbasic::host {
namespace {

/// The formats; without a value, OpenRaster.
using FileFormat = std::optional<RasterFormat>;
constexpr FileFormat kOpenRaster;

constexpr const char* kStandardInput = "-";
constexpr const char* kStandardInputFile = "/dev/stdin";

struct Extension {
    std::string_view text;
    FileFormat format;
};

constexpr Extension kExtensions[] = {
    {".png", RasterFormat::Png},   {".jpg", RasterFormat::Jpeg}, {".jpeg", RasterFormat::Jpeg},
    {".webp", RasterFormat::WebP}, {".tif", RasterFormat::Tiff}, {".tiff", RasterFormat::Tiff},
    {".ora", kOpenRaster},
};

std::string LowerExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    for (char& c : extension) {
        c = LowerCase(c);
    }
    return extension;
}

FileFormat FormatByExtension(const std::filesystem::path& path) {
    const std::string extension = LowerExtension(path);
    for (const Extension& known : kExtensions) {
        if (extension == known.text) {
            return known.format;
        }
    }
    throw FileError(path.string() +
                    ": does not end in a format that can be written; use .png, .jpg, .webp, .tif "
                    "or .ora");
}

[[noreturn]] void FailToOpen(const std::filesystem::path& path) {
    const int reason = errno;
    throw FileError(path.string() + ": cannot be opened (" +
                    std::system_category().message(reason) +
                    "); check the name and the permissions");
}

/// Whether the path names a file that can be read from any place; throws when it names none that
/// can be read at all.
bool IsPlainFile(const std::filesystem::path& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        throw FileError(path.string() + ": is a folder; name the images in it");
    }
    if (path == kStandardInput) {
        return false;
    }
    errno = 0;
    if (!std::ifstream(path, std::ios::binary)) {
        FailToOpen(path);
    }
    return std::filesystem::is_regular_file(path, error);
}

bool IsZip(std::istream& file) {
    std::array<char, 2> start{};
    file.read(start.data(), start.size());
    return file.gcount() == start.size() && start == std::array{'P', 'K'};
}

std::vector<std::byte> ReadWhole(std::istream& stream) {
    std::vector<std::byte> bytes;
    std::array<char, 1U << 16U> part{};
    while (stream.read(part.data(), part.size()) || stream.gcount() > 0) {
        const auto read =
            std::as_bytes(std::span(part).first(static_cast<size_t>(stream.gcount())));
        bytes.insert(bytes.end(), read.begin(), read.end());
    }
    return bytes;
}

Document DocumentOf(Picture picture, const std::string& layerName) {
    Document document{picture.width, picture.height, picture.bitDepth, {}};
    document.metadata = std::move(picture.metadata);
    Layer layer;
    layer.name = layerName;
    layer.pixels = std::move(picture.pixels);
    layer.bounds = BoundsOf(layer.pixels, document.width, document.height);
    document.items.emplace_back(std::move(layer));
    return document;
}

/// The document's picture, without a copy where it is a single layer's.
Picture PictureOf(Document document, int bitDepth) {
    Picture picture{document.width, document.height, bitDepth, {}, document.metadata};
    const bool isLayer = WholePicture(document) != nullptr;
    picture.pixels =
        isLayer ? std::move(std::get<Layer>(document.items.front()).pixels) : Flatten(document);
    return picture;
}

/// Only what belongs to the pixels.
std::shared_ptr<const FileMetadata> Stripped(const FileMetadata* metadata) {
    auto stripped = std::make_shared<FileMetadata>();
    if (metadata != nullptr) {
        stripped->width = metadata->width;
        stripped->height = metadata->height;
        stripped->lowerSamples = metadata->lowerSamples;
    }
    return stripped;
}

std::vector<std::byte> Encode(Document document, FileFormat format, const std::string& name,
                              const SaveOptions& options, std::vector<std::string>& notes) {
    const int depth = options.bitDepth != 0 ? options.bitDepth : document.bitDepth;
    if (options.encode.indexed && format != RasterFormat::Png) {
        throw FileError(name + ": only a PNG has a palette here; use .png");
    }
    if (format == kOpenRaster) {
        return EncodeOpenRaster(document, depth, name);
    }
    if (options.strip) {
        document.metadata = Stripped(document.metadata.get());
    }
    return EncodeRaster(PictureOf(std::move(document), depth), *format, name, notes,
                        options.encode);
}

}  // namespace

Document LoadDocument(const std::filesystem::path& path, std::vector<std::string>* notes,
                      Detail detail) {
    std::vector<std::string> unread;
    std::vector<std::string>& told = notes != nullptr ? *notes : unread;
    if (!IsPlainFile(path)) {
        std::ifstream stream(path == kStandardInput ? kStandardInputFile : path, std::ios::binary);
        return LoadDocument(ReadWhole(stream), path.string(), notes);
    }
    std::ifstream file(path, std::ios::binary);
    if (IsZip(file)) {
        return ReadOpenRaster(path.string(), detail, told);
    }
    return DocumentOf(ReadRaster({.name = path.string(), .path = path.string()}, told),
                      path.stem().string());
}

bool KeepsLayers(const std::filesystem::path& path) {
    return FormatByExtension(path) == kOpenRaster;
}

Document LoadDocument(std::span<const std::byte> bytes, const std::string& name,
                      std::vector<std::string>* notes) {
    std::vector<std::string> unread;
    return DocumentOf(
        ReadRaster({.name = name, .bytes = bytes}, notes != nullptr ? *notes : unread), name);
}

std::vector<std::string> SaveDocument(Document document, const std::filesystem::path& path,
                                      const SaveOptions& options) {
    const FileFormat format = FormatByExtension(path);
    AtomicFile file(path, options.overwrite);
    std::vector<std::string> notes;
    file.Commit(Encode(std::move(document), format, path.string(), options, notes));
    return notes;
}

std::vector<std::byte> EncodeDocument(Document document, const std::string& extension,
                                      const std::string& name, const SaveOptions& options,
                                      std::vector<std::string>& notes) {
    return Encode(std::move(document), FormatByExtension("x" + extension), name, options, notes);
}

std::optional<RasterHeader> ReadHeader(const std::filesystem::path& path,
                                       std::vector<std::string>& notes) {
    if (!IsPlainFile(path)) {
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    if (IsZip(file)) {
        return std::nullopt;
    }
    return ReadRasterHeader({.name = path.string(), .path = path.string()}, notes);
}

}  // namespace imgbasic::host
