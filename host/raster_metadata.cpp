#include "host/raster_metadata.h"

#include "host/exif.h"
#include "host/jpeg_segments.h"

namespace imgbasic::host {
namespace {

using vips::VImage;
using namespace std::string_view_literals;

FileMetadata::Bytes Blob(const VImage& image, const char* field) {
    if (image.get_typeof(field) != VIPS_TYPE_BLOB) {
        return {};
    }
    size_t size = 0;
    const void* const data = image.get_blob(field, &size);
    return MetadataBytes({static_cast<const char*>(data), size});
}

/// Removes what stands before an EXIF or an IPTC block in some formats.
FileMetadata::Bytes WithoutStart(const FileMetadata::Bytes& bytes, std::string_view start) {
    return TextOf(bytes).starts_with(start) ? MetadataBytes(TextOf(bytes).substr(start.size()))
                                            : bytes;
}

/// The records stand in a block of Photoshop resources, in a TIFF perhaps by themselves.
FileMetadata::Bytes IptcIn(const VImage& image) {
    constexpr auto kStart = "Photoshop 3.0\0"sv;
    const FileMetadata::Bytes iptc = Blob(image, VIPS_META_IPTC_NAME);
    if (TextOf(iptc).starts_with(kStart)) {
        return IptcOfPhotoshop(TextOf(iptc).substr(kStart.size()));
    }
    FileMetadata::Bytes inside = IptcOfPhotoshop(TextOf(Blob(image, VIPS_META_PHOTOSHOP_NAME)));
    return inside.empty() && AreWholeRecords(TextOf(iptc)) ? iptc : inside;
}

/// Texts stand in fields such as "png-comment-3-Title".
void* TakeText(VipsImage* image, const char* field, GValue* /*value*/, void* texts) {
    constexpr auto kStart = "png-comment-"sv;
    const std::string_view name = field;
    const char* text = nullptr;
    std::string keyword;
    if (name.starts_with(kStart) && name.find('-', kStart.size()) != name.npos) {
        keyword = name.substr(name.find('-', kStart.size()) + 1);
    } else if (name == "gif-comment") {
        keyword = "Comment";
    } else if (name == VIPS_META_IMAGEDESCRIPTION) {
        keyword = "Description";
    }
    if (!keyword.empty() && vips_image_get_string(image, field, &text) == 0) {
        static_cast<std::vector<TextEntry>*>(texts)->push_back({keyword, text});
    }
    return nullptr;
}

/// Takes the resolution in a PNG's header.
void TakePngResolution(const ReadAt& read, FileMetadata& metadata) {
    const auto number = [](std::string_view bytes, size_t at) {
        uint32_t value = 0;
        for (const char byte : bytes.substr(at, 4)) {
            value = value << 8 | static_cast<uint8_t>(byte);
        }
        return value;
    };
    constexpr size_t kContentAt = 8;
    constexpr size_t kContentSize = 9;
    int64_t position = 8;
    // Length, type, content, checksum.
    for (std::string chunk = read(position, kContentAt + kContentSize);
         chunk.size() > kContentAt && chunk.compare(4, 4, "IDAT") != 0;
         chunk = read(position, kContentAt + kContentSize)) {
        const bool isInMetres = chunk.size() == kContentAt + kContentSize && chunk.back() == 1;
        if (chunk.compare(4, 4, "pHYs") == 0 && isInMetres) {
            metadata.xResolution = number(chunk, kContentAt) / 1000.0;
            metadata.yResolution = number(chunk, kContentAt + 4) / 1000.0;
        }
        position += int64_t{number(chunk, 0)} + 12;
    }
}

/// libvips makes up a resolution where a file tells none, another one for each format, and takes
/// a TIFF's ratio without a unit for pixels a millimetre.
void TakeResolution(const VImage& image, const ReadAt& read, FileMetadata& metadata) {
    const std::string_view loader = image.get_string("vips-loader");
    if (loader.starts_with("jpeg")) {
        ReadJpegHeader(read, metadata);
    } else if (loader.starts_with("png")) {
        TakePngResolution(read, metadata);
    } else if (loader.starts_with("tiff") && image.get_typeof(VIPS_META_RESOLUTION_UNIT) != 0) {
        metadata.xResolution = image.xres();
        metadata.yResolution = image.yres();
    }
    if (metadata.xResolution == 0 || metadata.yResolution == 0) {
        const ExifResolution exif = ResolutionOfExif(metadata.exif);
        metadata.xResolution = exif.x;
        metadata.yResolution = exif.y;
    }
}

}  // namespace

FileMetadata MetadataOf(const VImage& image, const ReadAt& read) {
    FileMetadata metadata;
    metadata.profile = Blob(image, VIPS_META_ICC_NAME);
    metadata.exif = WithoutStart(Blob(image, VIPS_META_EXIF_NAME), "Exif\0\0"sv);
    metadata.xmp = Blob(image, VIPS_META_XMP_NAME);
    metadata.iptc = IptcIn(image);
    vips_image_map(image.get_image(), TakeText, &metadata.texts);
    TakeResolution(image, read, metadata);
    MakeExifUpright(metadata.exif);
    MakeXmpUpright(metadata.xmp);
    if (vips_image_get_orientation(image.get_image()) > 4) {
        std::swap(metadata.xResolution, metadata.yResolution);
    }
    return metadata;
}

void SetTiffMetadata(const VImage& image, const FileMetadata& metadata) {
    VipsImage* const target = image.get_image();
    const auto set = [target](const char* field, const FileMetadata::Bytes& bytes) {
        if (!bytes.empty()) {
            vips_image_set_blob_copy(target, field, bytes.data(), bytes.size());
        }
    };
    set(VIPS_META_ICC_NAME, metadata.profile);
    set(VIPS_META_XMP_NAME, metadata.xmp);
    // libvips gives the tag for records by themselves another length when it reads it.
    if (!metadata.iptc.empty()) {
        set(VIPS_META_PHOTOSHOP_NAME, MetadataBytes(PhotoshopOfIptc(metadata.iptc)));
    }
    for (const TextEntry& entry : metadata.texts) {
        if (entry.keyword == "Description") {
            vips_image_set_string(target, VIPS_META_IMAGEDESCRIPTION, entry.text.c_str());
        }
    }
}

}  // namespace imgbasic::host
