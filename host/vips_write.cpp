#include "host/exif.h"
#include "host/jpeg_segments.h"
#include "host/raster_encoders.h"
#include "host/raster_metadata.h"
#include "host/vips_library.h"
#include "host/webp_write.h"

namespace imgbasic::host {
namespace {

using vips::VImage;

constexpr int kJpegQuality = 95;

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
                           layout.bands <= 2 ? grays : colors, 1, 1);
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

}  // namespace

std::vector<std::byte> EncodeByLibrary(const Picture& picture, const SampleLayout& layout,
                                       const FileMetadata& metadata, RasterFormat format,
                                       const std::string& name, const EncodeOptions& options) {
    if (format == RasterFormat::WebP) {
        return EncodeWebP(picture, layout, metadata, options.quality, name);
    }
    const bool isJpeg = format == RasterFormat::Jpeg;
    return Guarded(name + ": cannot be encoded as " + (isJpeg ? "JPEG" : "TIFF"),
                   "; save it as PNG instead", [&] {
                       SampleRows rows(picture, layout);
                       const VImage image = ImageOf(picture, layout, rows);
                       return isJpeg ? WithJpegSegments(EncodeJpeg(image, options), metadata)
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

std::vector<std::byte> SrgbProfile() {
    return Guarded("the profile of sRGB: cannot be read",
                   "; check the image library's installation", [] {
                       VipsBlob* blob = nullptr;
                       if (vips_profile_load("srgb", &blob, nullptr) != 0) {
                           throw vips::VError();
                       }
                       return Content(blob);
                   });
}

}  // namespace imgbasic::host
