#include <algorithm>

#include "host/exif.h"
#include "host/image_file.h"
#include "host/png_write.h"
#include "host/raster_encoders.h"
#include "host/raster_file.h"
#include "host/sample_layout.h"

namespace imgbasic::host {
namespace {

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
    const auto pixels = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
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
    return EncodeByLibrary(picture, layout, metadata, format, name, options);
}

}  // namespace imgbasic::host
