#include "host/image_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/atomic_file.h"
#include "host/flatten.h"
#include "host/openraster.h"
#include "host/openraster_archive.h"
#include "host/raster_file.h"
#include "lib/base/ascii.h"

namespace imgbasic::host {
namespace {

/// The formats; without a value, OpenRaster.
using FileFormat = std::optional<RasterFormat>;
constexpr FileFormat kOpenRaster;

/// What a name may end in, behind a dot.
struct Ending {
    std::string_view text;
    FileFormat format;
};

constexpr Ending kEndings[] = {
    {"png", RasterFormat::Png},   {"jpg", RasterFormat::Jpeg}, {"jpeg", RasterFormat::Jpeg},
    {"webp", RasterFormat::WebP}, {"tif", RasterFormat::Tiff}, {"tiff", RasterFormat::Tiff},
    {"ora", kOpenRaster},
};

FileFormat FormatOf(const std::filesystem::path& path) {
    const std::string extension = path.extension().string();
    for (const Ending& known : kEndings) {
        if (!extension.empty() && EqualIgnoringCase(extension.substr(1), known.text)) {
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
                    std::generic_category().message(reason) +
                    "); check the name and the permissions");
}

/// Whether the path names a file that can be read from any place.
bool IsPlainFile(const std::filesystem::path& path) {
    std::error_code ignored;
    return path != kStandardStream && std::filesystem::is_regular_file(path, ignored);
}

/// A pipe may be opened only once: who writes to it is told when nobody reads any more.
std::ifstream OpenFile(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw FileError(path.string() + ": is a folder; name the images in it");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        FailToOpen(path);
    }
    return file;
}

bool IsZip(std::string_view start) {
    return start.starts_with("PK");
}

/// The same for a file.
bool IsZipFile(const std::filesystem::path& path) {
    std::array<char, 2> start{};
    OpenFile(path).read(start.data(), start.size());
    return IsZip({start.data(), start.size()});
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

/// What names of the format end in, by the name of it that a file's header gave.
std::string ExtensionOf(const std::string& format) {
    const bool isWritten = std::ranges::find(kEndings, format, &Ending::text) != std::end(kEndings);
    return isWritten ? "." + format : "";
}

Document DocumentOf(Picture picture, const std::string& layerName) {
    Document document{picture.width, picture.height, picture.bitDepth, {}};
    document.metadata = std::move(picture.metadata);
    document.extension = ExtensionOf(picture.format);
    Layer layer;
    layer.name = layerName;
    layer.pixels = std::move(picture.pixels);
    layer.bounds = BoundsOf(layer.pixels, document.width, document.height);
    document.items.emplace_back(std::move(layer));
    return document;
}

/// The document's picture, without a copy where it is a single layer's.
Picture PictureOf(Document document) {
    Picture picture{document.width, document.height, document.bitDepth, {}, document.metadata};
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

std::vector<std::byte> Encode(Picture picture, FileFormat format, const std::string& name,
                              const SaveOptions& options, std::vector<std::string>& notes) {
    if (options.encode.indexed && format != RasterFormat::Png) {
        throw FileError(name + ": only a PNG has a palette here; use .png");
    }
    if (options.bitDepth != 0) {
        picture.bitDepth = options.bitDepth;
    }
    if (options.strip) {
        picture.metadata = Stripped(picture.metadata.get());
    }
    return EncodeRaster(picture, format.value(), name, notes, options.encode);
}

std::vector<std::byte> Encode(Document document, FileFormat format, const std::string& name,
                              const SaveOptions& options, std::vector<std::string>& notes) {
    if (format == kOpenRaster && !options.encode.indexed) {
        const int depth = options.bitDepth != 0 ? options.bitDepth : document.bitDepth;
        return EncodeOpenRaster(document, depth, name);
    }
    return Encode(PictureOf(std::move(document)), format, name, options, notes);
}

template <typename Image>
std::vector<std::string> Save(Image image, const std::filesystem::path& path,
                              const SaveOptions& options) {
    const FileFormat format = FormatOf(path);
    AtomicFile file(path, options.overwrite);
    std::vector<std::string> notes;
    file.Commit(Encode(std::move(image), format, path.string(), options, notes));
    return notes;
}

/// Reads what can be read only once, to its end.
Document ReadStream(const std::filesystem::path& path, std::vector<std::string>& notes,
                    Detail detail) {
    const std::string name = InputName(path);
    std::vector<std::byte> bytes;
    if (path == kStandardStream) {
        bytes = ReadWhole(std::cin);
    } else {
        std::ifstream file = OpenFile(path);
        bytes = ReadWhole(file);
    }
    if (bytes.empty()) {
        throw FileError(name + ": is empty; look at what should have been written to it");
    }
    const auto* const start = reinterpret_cast<const char*>(bytes.data());
    if (IsZip({start, bytes.size()})) {
        return ReadOpenRaster(ZipReader(name, std::move(bytes)), name, detail, notes);
    }
    return DocumentOf(ReadRaster({.name = name, .bytes = bytes}, notes),
                      path == kStandardStream ? name : path.stem().string());
}

}  // namespace

std::string InputName(const std::filesystem::path& path) {
    return path == kStandardStream ? "standard input" : path.string();
}

Document LoadDocument(const std::filesystem::path& path, std::vector<std::string>* notes,
                      Detail detail) {
    std::vector<std::string> unread;
    std::vector<std::string>& told = notes != nullptr ? *notes : unread;
    if (!IsPlainFile(path)) {
        return ReadStream(path, told, detail);
    }
    if (IsZipFile(path)) {
        return ReadOpenRaster(ZipReader(path.string()), path.string(), detail, told);
    }
    return DocumentOf(ReadRaster({.name = path.string(), .path = path.string()}, told),
                      path.stem().string());
}

std::vector<std::string> OutputFormats() {
    std::vector<std::string> formats;
    for (const Ending& ending : kEndings) {
        formats.emplace_back(ending.text);
    }
    return formats;
}

void RequireFormat(const std::filesystem::path& path) {
    (void)FormatOf(path);
}

bool KeepsLayers(const std::string& extension) {
    return FormatOf("x" + extension) == kOpenRaster;
}

Document LoadDocument(std::span<const std::byte> bytes, const std::string& name,
                      std::vector<std::string>* notes) {
    std::vector<std::string> unread;
    return DocumentOf(
        ReadRaster({.name = name, .bytes = bytes}, notes != nullptr ? *notes : unread), name);
}

std::vector<std::string> SaveDocument(Document document, const std::filesystem::path& path,
                                      const SaveOptions& options) {
    return Save(std::move(document), path, options);
}

std::vector<std::string> SaveDocument(Picture picture, const std::filesystem::path& path,
                                      const SaveOptions& options) {
    return Save(std::move(picture), path, options);
}

std::vector<std::byte> EncodeDocument(Document document, const std::string& extension,
                                      const std::string& name, const SaveOptions& options,
                                      std::vector<std::string>& notes) {
    return Encode(std::move(document), FormatOf("x" + extension), name, options, notes);
}

std::vector<std::byte> EncodeDocument(Picture picture, const std::string& extension,
                                      const std::string& name, const SaveOptions& options,
                                      std::vector<std::string>& notes) {
    return Encode(std::move(picture), FormatOf("x" + extension), name, options, notes);
}

std::optional<RasterHeader> ReadHeader(const std::filesystem::path& path,
                                       std::vector<std::string>& notes) {
    if (!IsPlainFile(path)) {
        return std::nullopt;
    }
    if (IsZipFile(path)) {
        return std::nullopt;
    }
    return ReadRasterHeader({.name = path.string(), .path = path.string()}, notes);
}

}  // namespace imgbasic::host
