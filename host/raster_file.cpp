#include "host/raster_file.h"

#include <webp/encode.h>

#include <algorithm>
#include <memory>
#include <vips/vips8>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/memory_limit.h"
#include "host/sample_depth.h"

namespace imgbasic::host {
namespace {

using vips::VImage;

constexpr int kBands = 4;

/// Starts libvips, silent: what matters comes back as an error.
void StartVips() {
    static const bool started = [] {
        if (VIPS_INIT("imgbasic") != 0) {
            throw FileError("the image library cannot be started; check its installation");
        }
        g_log_set_handler(
            "VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK | G_LOG_FLAG_RECURSION),
            [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
        // A file that is read again may have changed.
        vips_cache_set_max(0);
        return true;
    }();
    (void)started;
}

/// What libvips complained about last, in one line; its buffer is empty then.
std::string LastLine(const vips::VError& error) {
    vips_error_clear();
    std::string text = error.what();
    text.erase(text.find_last_not_of('\n') + 1);
    return text.substr(text.rfind('\n') + 1);
}

/// The same image, its rows made by one thread. With more, libvips takes a picture for whole when
/// one thread finds no rows left to make before another fails at the last ones, as in a truncated
/// file. Decoders make rows in order anyway, so that nothing is lost.
VImage OnOneThread(const VImage& image) {
    VImage copy = image.copy();
    copy.set(VIPS_META_CONCURRENCY, 1);
    return copy;
}

/// Upright, 8 or 16 bits of sRGB and alpha, whatever it was.
VImage Normalized(VImage image) {
    if (vips_image_get_orientation(image.get_image()) > 1) {
        // Turning needs the rows in another order than the file has them.
        image = image.copy_memory().autorot();
    }
    const bool deep = image.format() != VIPS_FORMAT_UCHAR;
    const VipsInterpretation wanted = deep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
    if (image.interpretation() != wanted) {
        image = image.colourspace(wanted);
    }
    image = image.cast(deep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
    if (!image.has_alpha()) {
        image = image.bandjoin(deep ? 65535 : 255);
    }
    return image.bands() == kBands ? image
                                   : image.extract_band(0, VImage::option()->set("n", kBands));
}

/// Decodes `image`'s pixels by `fromFile`, which turns one channel's value into a document's.
template <typename Sample>
std::vector<RGBA16> PixelsOf(const VImage& image, uint16_t (*fromFile)(Sample)) {
    size_t size = 0;
    const std::unique_ptr<void, decltype(&g_free)> memory(image.write_to_memory(&size), g_free);
    const std::span samples(static_cast<const Sample*>(memory.get()), size / sizeof(Sample));
    std::vector<RGBA16> pixels(samples.size() / kBands);
    auto sample = samples.begin();
    for (RGBA16& pixel : pixels) {
        pixel = {fromFile(sample[0]), fromFile(sample[1]), fromFile(sample[2]),
                 fromFile(sample[3])};
        sample += kBands;
    }
    return pixels;
}

struct FormatTraits {
    const char* name;
    VImage (*load)(vips::VSource source, vips::VOption* options);
    bool alpha;
    bool deep;  ///< holds 16 bits a channel
};

FormatTraits TraitsOf(RasterFormat format) {
    switch (format) {
        case RasterFormat::Jpeg:
            return {"JPEG", VImage::jpegload_source, false, false};
        case RasterFormat::WebP:
            return {"WebP", VImage::webpload_source, true, false};
        case RasterFormat::Tiff:
            return {"TIFF", VImage::tiffload_source, true, true};
        case RasterFormat::Png:
            break;
    }
    return {"PNG", VImage::pngload_source, true, true};
}

Picture Decode(const vips::VSource& source, RasterFormat format, const std::string& name,
               std::vector<std::string>& notes) {
    const VImage file = TraitsOf(format).load(source, VImage::option()
                                                          ->set("access", VIPS_ACCESS_SEQUENTIAL)
                                                          ->set("fail_on", VIPS_FAIL_ON_ERROR));
    RequireMemory(name, file.width(), file.height(), 1);
    if (const int pages = vips_image_get_n_pages(file.get_image()); pages > 1) {
        notes.push_back(name + ": has " + std::to_string(pages) + " pages; the first one is used");
    }
    if (vips_band_format_isfloat(file.format()) != 0) {
        throw FileError(name +
                        ": has floating-point samples, which name no white; convert it to "
                        "16 bits a channel first");
    }
    const VImage image = Normalized(OnOneThread(file));
    Picture picture;
    picture.width = image.width();
    picture.height = image.height();
    picture.bitDepth = image.format() == VIPS_FORMAT_UCHAR ? 8 : 16;
    picture.pixels = picture.bitDepth == 8 ? PixelsOf<uint8_t>(image, FromDepth8)
                                           : PixelsOf<uint16_t>(image, FromDepth16);
    return picture;
}

/// Does `work`, a call into libvips, and turns its errors into ours, around its own last line.
template <typename Work>
auto Guarded(const std::string& before, const std::string& after, Work work) {
    StartVips();
    try {
        return work();
    } catch (const vips::VError& error) {
        throw FileError(before + " (" + LastLine(error) + ")" + after);
    }
}

template <typename Open>
Picture DecodeSource(RasterFormat format, const std::string& name, std::vector<std::string>& notes,
                     Open open) {
    return Guarded(name + ": is damaged or incomplete", "; get another copy of it",
                   [&] { return Decode(open(), format, name, notes); });
}

/// An image for libvips that keeps its samples alive.
template <typename Sample>
struct SampledImage {
    std::vector<Sample> samples;
    VImage image;
};

/// The pixels' three or four first channels, by `toFile` for every value.
template <typename Sample>
SampledImage<Sample> Sampled(const Picture& picture, int bands, Sample (*toFile)(uint16_t)) {
    std::vector<Sample> samples;
    samples.reserve(picture.pixels.size() * static_cast<size_t>(bands));
    for (RGBA16 pixel : picture.pixels) {
        if (bands == kBands) {
            samples.insert(samples.end(),
                           {toFile(pixel.r), toFile(pixel.g), toFile(pixel.b), toFile(pixel.a)});
        } else {
            pixel = Composite(pixel, CompositionKind::Normal,
                              {kFullScale, kFullScale, kFullScale, kFullScale});
            samples.insert(samples.end(), {toFile(pixel.r), toFile(pixel.g), toFile(pixel.b)});
        }
    }
    constexpr bool kDeep = sizeof(Sample) == 2;
    const VImage image =
        VImage::new_from_memory(samples.data(), samples.size() * sizeof(Sample), picture.width,
                                picture.height, bands,
                                kDeep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR)
            .copy(VImage::option()->set(
                "interpretation", kDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB));
    return {std::move(samples), image};
}

/// A lossless WebP, in which fully transparent pixels keep their colour; libvips drops it.
std::vector<std::byte> EncodedWebP(const VImage& image) {
    WebPConfig config;
    WebPPicture picture;
    if (WebPConfigInit(&config) == 0 || WebPPictureInit(&picture) == 0 ||
        WebPConfigLosslessPreset(&config, 4) == 0) {
        throw vips::VError("the WebP library has another version");
    }
    const std::unique_ptr<WebPPicture, decltype(&WebPPictureFree)> ownedPicture(&picture,
                                                                                WebPPictureFree);
    WebPMemoryWriter file;
    WebPMemoryWriterInit(&file);
    const std::unique_ptr<WebPMemoryWriter, decltype(&WebPMemoryWriterClear)> ownedFile(
        &file, WebPMemoryWriterClear);
    config.exact = 1;
    picture.use_argb = 1;
    picture.width = image.width();
    picture.height = image.height();
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &file;
    const auto* const samples = static_cast<const uint8_t*>(image.data());
    const int stride = image.width() * image.bands();
    const auto import = image.bands() == kBands ? WebPPictureImportRGBA : WebPPictureImportRGB;
    if (picture.width > WEBP_MAX_DIMENSION || picture.height > WEBP_MAX_DIMENSION) {
        throw vips::VError("no side may exceed " + std::to_string(WEBP_MAX_DIMENSION) + " pixels");
    }
    if (import(&picture, samples, stride) == 0 || WebPEncode(&config, &picture) == 0) {
        throw vips::VError("error " + std::to_string(picture.error_code) + " of the WebP library");
    }
    const std::span bytes = std::as_bytes(std::span(file.mem, file.size));
    return {bytes.begin(), bytes.end()};
}

/// The file of `format` that holds an image made by Sampled.
std::vector<std::byte> Encoded(const VImage& image, RasterFormat format) {
    VipsBlob* blob = nullptr;
    switch (format) {
        case RasterFormat::WebP:
            return EncodedWebP(image);
        case RasterFormat::Jpeg:
            blob = image.jpegsave_buffer(
                VImage::option()->set("Q", 95)->set("subsample_mode", VIPS_FOREIGN_SUBSAMPLE_OFF));
            break;
        case RasterFormat::Tiff:
            blob = image.tiffsave_buffer(
                VImage::option()
                    ->set("compression", VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE)
                    ->set("predictor", VIPS_FOREIGN_TIFF_PREDICTOR_HORIZONTAL));
            break;
        case RasterFormat::Png:
            blob = image.pngsave_buffer(VImage::option()
                                            ->set("compression", 3)
                                            ->set("filter", VIPS_FOREIGN_PNG_FILTER_SUB));
            break;
    }
    size_t size = 0;
    const auto* const first = static_cast<const std::byte*>(vips_blob_get(blob, &size));
    std::vector<std::byte> file(first, first + size);
    vips_area_unref(VIPS_AREA(blob));
    return file;
}

}  // namespace

Picture DecodeRaster(std::span<const std::byte> bytes, RasterFormat format, const std::string& name,
                     std::vector<std::string>& notes) {
    return DecodeSource(format, name, notes,
                        [&] { return vips::VSource::new_from_memory(bytes.data(), bytes.size()); });
}

Picture ReadRasterFile(const std::string& path, RasterFormat format,
                       std::vector<std::string>& notes) {
    return DecodeSource(format, path, notes,
                        [&] { return vips::VSource::new_from_file(path.c_str()); });
}

std::vector<std::byte> EncodeRaster(const Picture& picture, RasterFormat format,
                                    const std::string& name, std::vector<std::string>& notes) {
    const FormatTraits traits = TraitsOf(format);
    const bool opaque = std::ranges::all_of(
        picture.pixels, [](const RGBA16& pixel) { return pixel.a == kFullScale; });
    if (!opaque && !traits.alpha) {
        notes.push_back(name + ": " + traits.name +
                        " has no transparency, so the picture was laid over white; PNG keeps it");
    }
    if (picture.bitDepth == 16 && !traits.deep) {
        notes.push_back(name + ": " + traits.name +
                        " has 8 bits a channel, the picture had 16; PNG and TIFF keep them");
    }
    const int bands = opaque || !traits.alpha ? kBands - 1 : kBands;
    return Guarded(name + ": cannot be encoded as " + traits.name, "; save it as PNG instead", [&] {
        return picture.bitDepth == 16 && traits.deep
                   ? Encoded(Sampled<uint16_t>(picture, bands, ToDepth16).image, format)
                   : Encoded(Sampled<uint8_t>(picture, bands, ToDepth8).image, format);
    });
}

std::vector<std::byte> EncodeThumbnail(const Picture& picture, const std::string& name) {
    constexpr int kLargest = 256;
    return Guarded(name + ": cannot be given a thumbnail", "; save it as PNG instead", [&] {
        const SampledImage<uint8_t> sampled = Sampled<uint8_t>(picture, kBands, ToDepth8);
        return Encoded(
            sampled.image.thumbnail_image(
                kLargest, VImage::option()->set("height", kLargest)->set("size", VIPS_SIZE_DOWN)),
            RasterFormat::Png);
    });
}

}  // namespace imgbasic::host
