#include "host/jpeg_segments.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace imgbasic::host {
namespace {

using namespace std::string_view_literals;

constexpr uint8_t kApp0 = 0xE0;
constexpr uint8_t kApp1 = 0xE1;
constexpr uint8_t kApp2 = 0xE2;
constexpr uint8_t kApp13 = 0xED;
constexpr uint8_t kStartOfScan = 0xDA;
constexpr uint8_t kComment = 0xFE;

/// Of a segment, without its marker and the two bytes of its length.
constexpr size_t kMostContent = 65533;

constexpr std::string_view kJfif = "JFIF\0"sv;
constexpr size_t kUnitAt = 7;
constexpr size_t kDensityAt = 8;

unsigned ByteAt(std::string_view bytes, size_t at) {
    return static_cast<uint8_t>(bytes[at]);
}

unsigned PairAt(std::string_view bytes, size_t at) {
    return ByteAt(bytes, at) << 8 | ByteAt(bytes, at + 1);
}

void TakeDensity(std::string_view jfif, FileMetadata& metadata) {
    if (!jfif.starts_with(kJfif) || jfif.size() < kDensityAt + 4) {
        return;
    }
    const unsigned unit = ByteAt(jfif, kUnitAt);
    const double millimetres = unit == 1 ? 25.4 : unit == 2 ? 10 : 0;
    if (millimetres > 0) {
        metadata.xResolution = PairAt(jfif, kDensityAt) / millimetres;
        metadata.yResolution = PairAt(jfif, kDensityAt + 2) / millimetres;
    }
}

void AppendPair(std::string& bytes, size_t value) {
    bytes += static_cast<char>(value >> 8);
    bytes += static_cast<char>(value);
}

void AppendSegment(std::string& bytes, uint8_t marker, std::string_view start,
                   std::string_view content) {
    if (start.size() + content.size() > kMostContent) {
        return;
    }
    bytes.append("\xFF").append(1, static_cast<char>(marker));
    AppendPair(bytes, start.size() + content.size() + 2);
    bytes.append(start).append(content);
}

void AppendProfile(std::string& bytes, std::string_view profile) {
    constexpr std::string_view kStart = "ICC_PROFILE\0"sv;
    constexpr size_t kPart = kMostContent - kStart.size() - 2;
    const size_t parts = (profile.size() + kPart - 1) / kPart;
    for (size_t part = 0; part < parts && parts < 256; ++part) {
        std::string start(kStart);
        start += static_cast<char>(part + 1);
        start += static_cast<char>(parts);
        AppendSegment(bytes, kApp2, start, profile.substr(part * kPart, kPart));
    }
}

std::string JfifSegment(const FileMetadata& metadata) {
    const auto density = [](double resolution) {
        return static_cast<size_t>(std::clamp(std::round(resolution * 25.4), 1.0, 65535.0));
    };
    const bool known = metadata.xResolution > 0 && metadata.yResolution > 0;
    std::string content("\x01\x01"sv);
    content += known ? '\1' : '\0';
    AppendPair(content, known ? density(metadata.xResolution) : 1);
    AppendPair(content, known ? density(metadata.yResolution) : 1);
    content.append(2, '\0');
    std::string bytes;
    AppendSegment(bytes, kApp0, kJfif, content);
    return bytes;
}

}  // namespace

void ReadJpegHeader(const ReadAt& read, FileMetadata& metadata) {
    int64_t position = 2;
    for (std::string head = read(position, 4); head.size() == 4 && head[0] == '\xFF';
         head = read(position, 4)) {
        const unsigned marker = ByteAt(head, 1);
        const unsigned length = PairAt(head, 2);
        if (marker == kStartOfScan || length < 2) {
            break;
        }
        if (marker == kComment) {
            metadata.texts.push_back({"Comment", read(position + 4, length - 2)});
        } else if (marker == kApp0) {
            TakeDensity(read(position + 4, length - 2), metadata);
        }
        position += 2 + int64_t{length};
    }
}

std::vector<std::byte> WithJpegSegments(std::span<const std::byte> file,
                                        const FileMetadata& metadata) {
    const std::string_view bytes(reinterpret_cast<const char*>(file.data()), file.size());
    // The start of the image, and the segment with its density where the encoder wrote one.
    size_t rest = 2;
    if (bytes.size() > rest + 4 && ByteAt(bytes, rest + 1) == kApp0) {
        rest += 2 + size_t{PairAt(bytes, rest + 2)};
    }
    std::string head(bytes.substr(0, 2));
    head += JfifSegment(metadata);
    if (!metadata.exif.empty()) {
        AppendSegment(head, kApp1, "Exif\0\0"sv, TextOf(metadata.exif));
    }
    if (!metadata.xmp.empty()) {
        AppendSegment(head, kApp1, "http://ns.adobe.com/xap/1.0/\0"sv, TextOf(metadata.xmp));
    }
    AppendProfile(head, TextOf(metadata.profile));
    if (!metadata.iptc.empty()) {
        AppendSegment(head, kApp13, "Photoshop 3.0\0"sv, PhotoshopOfIptc(metadata.iptc));
    }
    for (const TextEntry& entry : metadata.texts) {
        if (entry.keyword == "Comment") {
            AppendSegment(head, kComment, "", entry.text);
        }
    }
    std::vector<std::byte> whole;
    whole.reserve(head.size() + file.size());
    const auto headBytes = std::as_bytes(std::span(head));
    whole.insert(whole.end(), headBytes.begin(), headBytes.end());
    whole.insert(whole.end(), file.begin() + static_cast<ptrdiff_t>(rest), file.end());
    return whole;
}

}  // namespace imgbasic::host
