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
#include "host/indexed_png.h"
#include "host/openraster.h"
#include "host/raster_file.h"
#include "lib/base/ascii.h"

namespace imgbasic::host {
namespace {

/// The formats; without a value, OpenRaster.
using FileFormat = std::optional<RasterFormat>;
constexpr FileFormat kOpenRaster;

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

struct Signature {
    size_t offset;
    std::string_view bytes;
    FileFormat format;
};

using namespace std::string_view_literals;

constexpr Signature kSignatures[] = {
    {0, "\x89PNG\r\n\x1A\n"sv, RasterFormat::Png},
    {0, "\xFF\xD8\xFF"sv, RasterFormat::Jpeg},
    {8, "WEBP"sv, RasterFormat::WebP},
    {0, "II*\0"sv, RasterFormat::Tiff},
    {0, "MM\0*"sv, RasterFormat::Tiff},
    {0, "II+\0"sv, RasterFormat::Tiff},
    {0, "MM\0+"sv, RasterFormat::Tiff},
    {0, "PK"sv, kOpenRaster},
};

FileFormat FormatByContent(const std::filesystem::path& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        throw FileError(path.string() + ": is a folder; name the images in it");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        const int reason = errno;
        throw FileError(path.string() + ": cannot be opened (" +
                        std::system_category().message(reason) +
                        "); check the name and the permissions");
    }
    std::array<char, 16> start{};
    file.read(start.data(), start.size());
    const std::string_view content(start.data(), static_cast<size_t>(file.gcount()));
    for (const Signature& known : kSignatures) {
        if (content.size() > known.offset &&
            content.substr(known.offset).starts_with(known.bytes)) {
            return known.format;
        }
    }
    throw FileError(path.string() +
                    ": is no image that can be read; convert it to PNG, JPEG, WebP, TIFF or "
                    "OpenRaster first");
}

}  // namespace

Document LoadDocument(const std::filesystem::path& path, std::vector<std::string>* notes,
                      Detail detail) {
    std::vector<std::string> unread;
    std::vector<std::string>& told = notes != nullptr ? *notes : unread;
    const FileFormat format = FormatByContent(path);
    if (format == kOpenRaster) {
        return ReadOpenRaster(path.string(), detail, told);
    }
    Picture picture = ReadRasterFile(path.string(), *format, told);
    Document document{picture.width, picture.height, picture.bitDepth, {}};
    Layer layer;
    layer.name = path.stem().string();
    layer.pixels = std::move(picture.pixels);
    layer.bounds = BoundsOf(layer.pixels, document.width, document.height);
    document.items.emplace_back(std::move(layer));
    return document;
}

bool KeepsLayers(const std::filesystem::path& path) {
    return FormatByExtension(path) == kOpenRaster;
}

std::vector<std::string> SaveDocument(const Document& document, const std::filesystem::path& path,
                                      const SaveOptions& options) {
    const FileFormat format = FormatByExtension(path);
    AtomicFile file(path, options.overwrite);
    const int depth = options.bitDepth != 0 ? options.bitDepth : document.bitDepth;
    std::vector<std::string> notes;
    if (format == kOpenRaster) {
        file.Commit(EncodeOpenRaster(document, depth, path.string()));
    } else {
        const Picture flat{document.width, document.height, depth, Flatten(document)};
        file.Commit(EncodeRaster(flat, *format, path.string(), notes));
    }
    return notes;
}

bool SaveIndexedPng(const Document& document, const std::filesystem::path& path,
                    const SaveOptions& options) {
    if (FormatByExtension(path) != RasterFormat::Png) {
        throw FileError(path.string() + ": only a PNG has a palette here; use .png");
    }
    AtomicFile file(path, options.overwrite);
    const Picture flat{document.width, document.height, 8, Flatten(document)};
    const auto indexed = EncodeIndexedPng(flat, path.string());
    if (indexed) {
        file.Commit(*indexed);
    }
    return indexed.has_value();
}

}  // namespace imgbasic::host
