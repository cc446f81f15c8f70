#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <string_view>

#include "host/memory_limit.h"
#include "host/raster_file.h"
#include "host/raster_metadata.h"
#include "host/raster_strips.h"
#include "host/sample_pixels.h"
#include "host/upright_pixels.h"
#include "host/vips_library.h"

namespace imgbasic::host {
namespace {

using vips::VImage;
using namespace std::string_view_literals;

/// What libvips reads through ImageMagick is told by its content here: some of that library's
/// formats are programs that open other files.
constexpr std::string_view kPsd = "8BPS"sv;
constexpr std::string_view kMagickContents[] = {"BM"sv, kPsd, "\0\0\1\0"sv};

/// The beginning of the name of libvips's loader.
const char* LoaderFor(RasterFormat format) {
    switch (format) {
        case RasterFormat::Jpeg:
            return "VipsForeignLoadJpeg";
        case RasterFormat::WebP:
            return "VipsForeignLoadWebp";
        case RasterFormat::Tiff:
            return "VipsForeignLoadTiff";
        case RasterFormat::Png:
            break;
    }
    return "VipsForeignLoadPng";
}

vips::VSource SourceOf(const RasterInput& input) {
    return input.path.empty()
               ? vips::VSource::new_from_memory(input.bytes.data(), input.bytes.size())
               : vips::VSource::new_from_file(input.path.c_str());
}

std::string ReadPart(const RasterInput& input, int64_t position, size_t size) {
    std::string part(size, '\0');
    if (input.path.empty()) {
        const size_t first = std::min(static_cast<size_t>(position), input.bytes.size());
        part.resize(std::min(size, input.bytes.size() - first));
        std::ranges::copy(input.bytes.subspan(first, part.size()),
                          std::as_writable_bytes(std::span(part)).begin());
    } else {
        std::ifstream file(input.path, std::ios::binary);
        file.seekg(position);
        file.read(part.data(), static_cast<std::streamsize>(size));
        part.resize(static_cast<size_t>(file.gcount()));
    }
    return part;
}

vips::VOption* LoadOptions() {
    return VImage::option()
        ->set("access", VIPS_ACCESS_SEQUENTIAL)
        ->set("fail_on", VIPS_FAIL_ON_ERROR);
}

/// Reads the header; nothing when the content is no image of the wanted kind.
std::optional<VImage> ImageIn(const RasterInput& input, const char* wantedLoader) {
    const vips::VSource source = SourceOf(input);
    const char* const loader = vips_foreign_find_load_source(source.get_source());
    vips_error_clear();
    if (loader != nullptr) {
        return wantedLoader == nullptr || std::string_view(loader).starts_with(wantedLoader)
                   ? std::optional(VImage::new_from_source(source, "", LoadOptions()))
                   : std::nullopt;
    }
    const std::string start = ReadPart(input, 0, 8);
    const bool isKnown = std::ranges::any_of(
        kMagickContents, [&](std::string_view content) { return start.starts_with(content); });
    VipsBlob* const blob =
        isKnown && wantedLoader == nullptr ? vips_source_map_blob(source.get_source()) : nullptr;
    if (blob == nullptr) {
        return std::nullopt;
    }
    // The image holds on to the bytes.
    const std::unique_ptr<VipsArea, decltype(&vips_area_unref)> owned(VIPS_AREA(blob),
                                                                      vips_area_unref);
    return VImage::magickload_buffer(blob, LoadOptions());
}

/// A file of which only the header has been read.
struct OpenedFile {
    VImage image;
    RasterHeader header;
};

OpenedFile Open(const RasterInput& input, const char* wantedLoader,
                std::vector<std::string>& notes) {
    const int impossibleBefore = ImpossibleSides();
    const std::optional<VImage> image = ImageIn(input, wantedLoader);
    if (ImpossibleSides() != impossibleBefore) {
        throw vips::VError("its width or height is 0 or far too large");
    }
    if (!image && wantedLoader != nullptr) {
        throw vips::VError("it is of another format");
    }
    if (!image) {
        throw FileError(input.name +
                        ": is no image that can be read; convert it to PNG, JPEG, WebP, TIFF or "
                        "OpenRaster first");
    }
    OpenedFile file;
    file.image = *image;
    if (const int pages = vips_image_get_n_pages(file.image.get_image()); pages > 1) {
        // Its first page is the picture of the whole, the others are the layers.
        const bool isPsd = ReadPart(input, 0, kPsd.size()) == kPsd;
        notes.push_back(input.name +
                        (isPsd
                             ? ": its layers are not read, only the picture of the whole"
                             : ": has " + std::to_string(pages) + " pages; the first one is used"));
    }
    RasterHeader& header = file.header;
    header.width = file.image.width();
    header.height = file.image.height();
    if (vips_image_get_orientation(file.image.get_image()) > 4) {
        std::swap(header.width, header.height);
    }
    header.bitDepth = file.image.format() == VIPS_FORMAT_UCHAR ? 8 : 16;
    header.isOpaque = vips_image_hasalpha(file.image.get_image()) == 0;
    const std::string_view loader = file.image.get_string("vips-loader");
    header.format = loader.substr(0, loader.find("load"));
    const ReadAt read = [&](int64_t position, size_t size) {
        return ReadPart(input, position, size);
    };
    header.metadata = std::make_shared<FileMetadata>(MetadataOf(file.image, read));
    return file;
}

/// The same picture in gray or RGB of 8 or 16 bits, with alpha or without.
VImage InKnownColors(const VImage& image, const std::string& name,
                     std::vector<std::string>& notes) {
    const bool deep = image.format() != VIPS_FORMAT_UCHAR;
    const VipsInterpretation wanted = deep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
    switch (image.interpretation()) {
        case VIPS_INTERPRETATION_CMYK: {
            const bool profiled = image.get_typeof(VIPS_META_ICC_NAME) != 0;
            notes.push_back(name + ": is CMYK and was converted to sRGB by " +
                            (profiled ? "its profile" : "a common profile, having none itself"));
            if (profiled) {
                return image.icc_transform(
                    "srgb", VImage::option()->set("embedded", true)->set("depth", deep ? 16 : 8));
            }
            return image.colourspace(wanted).cast(image.format());
        }
        case VIPS_INTERPRETATION_LAB:
        case VIPS_INTERPRETATION_LABS:
        case VIPS_INTERPRETATION_LABQ:
            notes.push_back(name + ": is L*a*b* and was converted to sRGB");
            return image.colourspace(wanted).cast(deep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
        default:
            break;
    }
    if (image.format() != VIPS_FORMAT_UCHAR && image.format() != VIPS_FORMAT_USHORT) {
        throw FileError(name +
                        ": has floating-point or 32-bit samples, which name no white; convert it "
                        "to 16 bits a channel first");
    }
    return image;
}

/// Reads the rows of an image from top to bottom, as they lie in its file.
class StripReader {
  public:
    explicit StripReader(const VImage& image)
        : image_(image), region_(vips_region_new(image.get_image()), g_object_unref) {}

    /// Reads the next few rows; false behind the last one.
    bool Next(std::vector<RGBA16>& rows) {
        const VipsRect area{0, top_, image_.width(), std::min(kStrip, image_.height() - top_)};
        if (area.height == 0) {
            return false;
        }
        if (vips_region_prepare(region_.get(), &area) != 0) {
            throw vips::VError();
        }
        const auto width = static_cast<size_t>(area.width);
        rows.resize(width * static_cast<size_t>(area.height));
        for (int y = 0; y < area.height; ++y) {
            const auto row = std::span(rows).subspan(static_cast<size_t>(y) * width, width);
            const VipsPel* const samples = VIPS_REGION_ADDR(region_.get(), 0, top_ + y);
            if (image_.format() == VIPS_FORMAT_UCHAR) {
                ConvertSamples(samples, image_.bands(), row);
            } else {
                ConvertSamples(reinterpret_cast<const uint16_t*>(samples), image_.bands(), row);
            }
        }
        top_ += area.height;
        return true;
    }

  private:
    /// Few enough rows to stay in the processor's cache.
    static constexpr int kStrip = 16;

    const VImage& image_;
    const std::unique_ptr<VipsRegion, decltype(&g_object_unref)> region_;
    int top_ = 0;
};

template <typename Pixel>
UprightPixels<Pixel> UprightPixelsFor(const VImage& image) {
    return {image.width(), image.height(), vips_image_get_orientation(image.get_image())};
}

std::vector<RGBA16> PixelsOf(const VImage& image) {
    auto upright = UprightPixelsFor<RGBA16>(image);
    std::vector<RGBA16> rows;
    for (StripReader reader(image); reader.Next(rows);) {
        upright.Add(rows);
    }
    return upright.Take();
}

std::vector<RGB8> ChangedPixelsOf(const VImage& image, const StripChange& change) {
    auto upright = UprightPixelsFor<RGB8>(image);
    std::vector<RGBA16> rows;
    std::vector<RGB8> rounded;
    for (StripReader reader(image); reader.Next(rows);) {
        change(rows, image.width());
        rounded.resize(rows.size());
        RoundToBytes(rows, 3, rounded.front().data());
        upright.Add(rounded);
    }
    return upright.Take();
}

/// Without a `change`, as it is.
Picture Decode(const RasterInput& input, const char* wantedLoader, const StripChange& change,
               std::vector<std::string>& notes) {
    const OpenedFile file = Open(input, wantedLoader, notes);
    const RasterHeader& header = file.header;
    RequireMemory(
        input.name, header.width, header.height,
        PictureBytes(header.width, header.height, change ? sizeof(RGB8) : sizeof(RGBA16)));
    const VImage image = InKnownColors(file.image, input.name, notes);
    Picture picture{header.width, header.height, image.format() == VIPS_FORMAT_UCHAR ? 8 : 16, {}};
    if (change) {
        picture.rgb = ChangedPixelsOf(image, change);
    } else {
        picture.pixels = PixelsOf(image);
    }
    auto metadata = std::make_shared<FileMetadata>(*header.metadata);
    metadata->width = picture.width;
    metadata->height = picture.height;
    if (picture.bitDepth == 16) {
        metadata->lowerSamples = TakeLowerSamples(picture.pixels);
    }
    picture.metadata = std::move(metadata);
    picture.format = header.format;
    return picture;
}

/// Does `work`, which reads a file by libvips.
template <typename Work>
auto Reading(const std::string& name, Work work) {
    StartVips();
    try {
        return work();
    } catch (const vips::VError& error) {
        const std::string reason = LastLine(error);
        const bool isUnsupported = std::ranges::any_of(
            std::array{"unsupported"sv, "not supported"sv, "not a whole number"sv},
            [&](std::string_view words) { return reason.find(words) != reason.npos; });
        throw FileError(name + (isUnsupported ? ": is of a kind that is not supported (" + reason +
                                                    "); convert it to 8 or 16 bits a channel first"
                                              : ": is damaged or incomplete (" + reason +
                                                    "); get another copy of it"));
    }
}

}  // namespace

Picture ReadRaster(const RasterInput& input, std::vector<std::string>& notes) {
    return Reading(input.name, [&] { return Decode(input, nullptr, {}, notes); });
}

Picture ReadRasterInStrips(const RasterInput& input, const StripChange& change,
                           std::vector<std::string>& notes) {
    return Reading(input.name, [&] { return Decode(input, nullptr, change, notes); });
}

Picture DecodeRaster(std::span<const std::byte> bytes, RasterFormat format, const std::string& name,
                     std::vector<std::string>& notes) {
    const RasterInput input{.name = name, .bytes = bytes};
    return Reading(name, [&] { return Decode(input, LoaderFor(format), {}, notes); });
}

RasterHeader ReadRasterHeader(const RasterInput& input, std::vector<std::string>& notes) {
    return Reading(input.name, [&] { return Open(input, nullptr, notes).header; });
}

}  // namespace imgbasic::host
