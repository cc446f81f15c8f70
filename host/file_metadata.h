#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace imgbasic::host {

struct TextEntry {
    std::string keyword;  ///< such as "Title" or "Comment"
    std::string text;     ///< UTF-8
};

/// What a file without layers holds beside its picture, to be written into the file that the
/// picture goes to. Everything may be empty.
struct FileMetadata {
    using Bytes = std::vector<std::byte>;

    Bytes profile;           ///< ICC
    Bytes exif;              ///< a TIFF structure, without the words before it; upright
    Bytes xmp;               ///< a packet; upright
    Bytes iptc;              ///< IIM records
    double xResolution = 0;  ///< pixels a millimetre; 0 when the file tells none
    double yResolution = 0;
    std::vector<TextEntry> texts;

    /// The size of the picture, and which of its samples FinerSamples could not keep apart.
    int32_t width = 0;
    int32_t height = 0;
    std::vector<bool> lowerSamples;
};

/// Reads up to `size` bytes from `position` of a file; fewer at its end.
using ReadAt = std::function<std::string(int64_t position, size_t size)>;

enum class ProfileKind { None, Gray, Rgb, Other };

/// The kind of picture that an ICC profile is for.
ProfileKind KindOfProfile(const FileMetadata::Bytes& profile);

/// Replaces the orientation that an XMP packet tells by the upright one.
void MakeXmpUpright(FileMetadata::Bytes& xmp);

/// The IIM records in a block of Photoshop resources, and such a block around records.
FileMetadata::Bytes IptcOfPhotoshop(std::string_view resources);
std::string PhotoshopOfIptc(const FileMetadata::Bytes& iptc);

/// Whether the bytes are records to their end, none cut off.
bool AreWholeRecords(std::string_view iptc);

/// Bytes as characters; they stay the vector's.
inline std::string_view TextOf(const FileMetadata::Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

FileMetadata::Bytes MetadataBytes(std::string_view text);

}  // namespace imgbasic::host
