#include <algorithm>

#include "host/exif.h"
#include "host/jpeg_segments.h"
#include "host/png_write.h"
#include "host/raster_file.h"
#include "host/raster_metadata.h"
#include "host/sample_layout.h"
#include "host/vips_library.h"
#include "host/webp_write.h"

namespace imgbasic::host {
namespace {

using vips::VImage;

constexpr int kJpegQuality = 95;

/// With the filter that the encoder uses, smaller than common programs' files at their usual level
/// and done sooner; level 6 takes four times as long for a tenth less.
constexpr int kZlibLevel = 3;

struct FormatTraits {
    const char* name;
    bool alpha;
    bool deep;     ///< holds 16 bits a channel
    bool gray;     ///< has pictures without colour
    bool bilevel;  ///< has pictures of 1 bit a pixel
    bool palette;
};

FormatTraits FormatTraitsOf(RasterFormat format) {
    switch (format) {
        case RasterFormat::Jpeg:
            return {.name = "JPEG",
                    .alpha = false,
                    .deep = false,
                    .gray = true,
                    .bilevel = false,
                    .palette = false};
        case RasterFormat::WebP:
            return {.name = "WebP",
                    .alpha = true,
                    .deep = false,
                    .gray = false,
                    .bilevel = false,
                    .palette = false};
        case RasterFormat::Tiff:
            return {.name = "TIFF",
                    .alpha = true,
                    .deep = true,
                    .gray = true,
                    .bilevel = true,
                    .palette = false};
        case RasterFormat::Png:
            break;
    }
    return {
        .name = "PNG", .alpha = true, .deep = true, .gray = true, .bilevel = true, .palette = true};
}

/// Bits of an index into so many colours.
int IndexDepth(size_t colors) {
    return colors <= 2 ? 1 : colors <= 4 ? 2 : colors <= 16 ? 4 : 8;
}

/// Whether a palette and its indices take less room than samples of `bands` bytes a pixel.
bool PaletteSaves(const Picture& picture, size_t colors, int bands) {
    constexpr size_t kPerColor = 3;
    constexpr size_t kChunk = 12;
    const size_t pixels = picture.pixels.size();
    const auto depth = static_cast<size_t>(IndexDepth(colors));
    return colors * kPerColor + kChunk + pixels * depth / 8 < pixels * static_cast<size_t>(bands);
}

SampleLayout LayoutFor(const Picture& picture, int depth, PictureTraits traits,
                       const FormatTraits& format, const EncodeOptions& options) {
    SampleLayout layout;
    layout.overWhite = !traits.opaque && !format.alpha;
    const bool alpha = !traits.opaque && format.alpha;
    const bool gray = options.compact && traits.gray && format.gray;
    layout.bands = (gray ? 1 : 3) + (alpha ? 1 : 0);
    layout.depth = depth;
    if (gray && traits.blackAndWhite && format.bilevel && !options.indexed) {
        layout.depth = 1;
        return layout;
    }
    // A palette holds colours, which a profile for gray does not describe.
    const bool wanted =
        options.indexed || (options.compact && depth == 8 &&
                            PaletteSaves(picture, traits.palette.size(), layout.bands) &&
                            (picture.metadata == nullptr ||
                             KindOfProfile(picture.metadata->profile) != ProfileKind::Gray));
    if (wanted && format.palette && !traits.palette.empty()) {
        layout.bands = 1;
        layout.depth = IndexDepth(traits.palette.size());
        layout.palette = std::move(traits.palette);
    }
    return layout;
}

bool IsGray(const SampleLayout& layout) {
    return layout.bands <= 2 && layout.palette.empty();
}

/// The picture's metadata as its file gets it. A profile for another kind of picture would be
/// wrong and is left out.
FileMetadata MetadataFor(const Picture& picture, const SampleLayout& layout,
                         const std::string& name, std::vector<std::string>& notes) {
    if (picture.metadata == nullptr) {
        return {};
    }
    FileMetadata metadata = *picture.metadata;
    SetExifSize(metadata.exif, picture.width, picture.height);
    const ProfileKind kind = KindOfProfile(metadata.profile);
    if (kind == (IsGray(layout) ? ProfileKind::Gray : ProfileKind::Rgb)) {
        return metadata;
    }
    // Black and white are the same in all, and what was converted has been told before.
    if ((kind == ProfileKind::Gray || kind == ProfileKind::Rgb) && layout.depth != 1) {
        notes.push_back(name + ": the colour profile was left out, being for " +
                        (kind == ProfileKind::Gray ? "grey and the picture is not"
                                                   : "colour and the picture is grey"));
    }
    metadata.profile.clear();
    return metadata;
}

/// Fills what libvips asks for.
int GenerateRows(VipsRegion* region, void* /*sequence*/, void* rows, void* /*unused*/,
                 gboolean* /*stop*/) {
    const VipsRect& area = region->valid;
    for (int y = area.top; y < area.top + area.height; ++y) {
        static_cast<const SampleRows*>(rows)->Fill(
            y, reinterpret_cast<std::byte*>(VIPS_REGION_ADDR(region, 0, y)));
    }
    return 0;
}

/// An image for libvips that makes its rows when they are needed; borrows `rows`.
VImage ImageOf(const Picture& picture, const SampleLayout& layout, SampleRows& rows) {
    const bool deep = layout.depth == 16;
    const VipsInterpretation colors = deep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
    const VipsInterpretation grays = deep ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W;
    VImage image(vips_image_new());
    vips_image_init_fields(image.get_image(), picture.width, picture.height, layout.bands,
                           deep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR, VIPS_CODING_NONE,
                           IsGray(layout) ? grays : colors, 1, 1);
    if (vips_image_pipelinev(image.get_image(), VIPS_DEMAND_STYLE_THINSTRIP, nullptr) != 0 ||
        vips_image_generate(image.get_image(), nullptr, GenerateRows, nullptr, &rows, nullptr) !=
            0) {
        throw vips::VError();
    }
    return image;
}

std::vector<std::byte> Content(VipsBlob* blob) {
    size_t size = 0;
    const auto* const first = static_cast<const std::byte*>(vips_blob_get(blob, &size));
    std::vector<std::byte> file(first, first + size);
    vips_area_unref(VIPS_AREA(blob));
    return file;
}

std::vector<std::byte> EncodeJpeg(const VImage& image, const EncodeOptions& options) {
    return Content(image.jpegsave_buffer(
        VImage::option()->set("Q", options.quality.value_or(kJpegQuality))->set("strip", true)));
}

VipsForeignTiffCompression VipsCompression(TiffCompression compression) {
    switch (compression) {
        case TiffCompression::None:
            return VIPS_FOREIGN_TIFF_COMPRESSION_NONE;
        case TiffCompression::Lzw:
            return VIPS_FOREIGN_TIFF_COMPRESSION_LZW;
        case TiffCompression::Group4:
            return VIPS_FOREIGN_TIFF_COMPRESSION_CCITTFAX4;
        case TiffCompression::Deflate:
            break;
    }
    return VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE;
}

std::vector<std::byte> EncodeTiff(const VImage& image, bool bilevel, const FileMetadata& metadata,
                                  const EncodeOptions& options) {
    const TiffCompression compression = options.tiffCompression.value_or(
        bilevel ? TiffCompression::Group4 : TiffCompression::Deflate);
    SetTiffMetadata(image, metadata);
    const bool resolved = metadata.xResolution > 0 && metadata.yResolution > 0;
    std::vector<std::byte> file = Content(image.tiffsave_buffer(
        VImage::option()
            ->set("compression", VipsCompression(compression))
            ->set("predictor", bilevel ? VIPS_FOREIGN_TIFF_PREDICTOR_NONE
                                       : VIPS_FOREIGN_TIFF_PREDICTOR_HORIZONTAL)
            ->set("bitdepth", bilevel ? 1 : 0)
            ->set("resunit", VIPS_FOREIGN_TIFF_RESUNIT_INCH)
            ->set("xres", resolved ? metadata.xResolution : 1.0)
            ->set("yres", resolved ? metadata.yResolution : 1.0)));
    if (!resolved) {
        RemoveTiffResolutionUnit(file);
    }
    return file;
}

/// What the format cannot keep.
void TellLosses(const Picture& picture, bool opaque, const FormatTraits& format,
                const std::string& name, std::vector<std::string>& notes) {
    if (!opaque && !format.alpha) {
        notes.push_back(name + ": " + format.name +
                        " has no transparency, so the picture was laid over white; PNG keeps it");
    }
    if (picture.bitDepth == 16 && !format.deep) {
        notes.push_back(name + ": " + format.name +
                        " has 8 bits a channel, the picture had 16; PNG and TIFF keep them");
    }
}

/// What was asked for and the format has no choice of.
void TellUnused(RasterFormat format, const EncodeOptions& options, const std::string& name,
                std::vector<std::string>& notes) {
    const auto tell = [&](const char* what, const char* whose) {
        notes.push_back(name + ": " + what + " has no effect on it, being for " + whose);
    };
    if (options.quality && format != RasterFormat::Jpeg && format != RasterFormat::WebP) {
        tell("the quality", "JPEG and WebP");
    }
    if (options.zlibLevel && format != RasterFormat::Png) {
        tell("a compression of 0 to 9", "PNG");
    }
    if (options.tiffCompression && format != RasterFormat::Tiff) {
        tell("a compression given by its name", "TIFF");
    }
}

}  // namespace

std::vector<std::byte> EncodeRaster(const Picture& picture, RasterFormat format,
                                    const std::string& name, std::vector<std::string>& notes,
                                    const EncodeOptions& options) {
    const FormatTraits known = FormatTraitsOf(format);
    const int depth = known.deep && !options.indexed ? picture.bitDepth : 8;
    PictureTraits traits = TraitsOf(picture, depth);
    TellLosses(picture, traits.opaque, known, name, notes);
    TellUnused(format, options, name, notes);
    if (options.indexed && traits.palette.empty()) {
        throw FileError(name + ": the picture has more than 256 colours; leave out --indexed");
    }
    if (format == RasterFormat::Tiff && options.tiffCompression == TiffCompression::Group4 &&
        !(traits.blackAndWhite && options.compact)) {
        throw FileError(name + ": the compression group4 is for black and white only; use deflate");
    }
    const SampleLayout layout = LayoutFor(picture, depth, std::move(traits), known, options);
    const FileMetadata metadata = MetadataFor(picture, layout, name, notes);
    if (format == RasterFormat::Png) {
        return EncodePng(picture, layout, metadata, options.zlibLevel.value_or(kZlibLevel), name);
    }
    if (format == RasterFormat::WebP) {
        return EncodeWebP(picture, layout, metadata, options.quality, name);
    }
    return Guarded(name + ": cannot be encoded as " + known.name, "; save it as PNG instead", [&] {
        SampleRows rows(picture, layout);
        const VImage image = ImageOf(picture, layout, rows);
        return format == RasterFormat::Jpeg
                   ? WithJpegSegments(EncodeJpeg(image, options), metadata)
                   : EncodeTiff(image, layout.depth == 1, metadata, options);
    });
}

std::vector<std::byte> EncodeThumbnail(const Picture& picture, const std::string& name) {
    constexpr int kLargest = 256;
    return Guarded(name + ": cannot be given a thumbnail", "; save it as PNG instead", [&] {
        const SampleLayout layout;
        SampleRows rows(picture, layout);
        return Content(
            ImageOf(picture, layout, rows)
                .thumbnail_image(
                    kLargest,
                    VImage::option()->set("height", kLargest)->set("size", VIPS_SIZE_DOWN))
                .pngsave_buffer());
    });
}

}  // namespace imgbasic::host
