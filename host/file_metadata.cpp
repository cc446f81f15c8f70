#include "host/file_metadata.h"

#include <span>

namespace imgbasic::host {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kResource = "8BIM"sv;
constexpr std::string_view kIptcResource = "8BIM\x04\x04"sv;

size_t BigEndian(std::string_view bytes) {
    size_t value = 0;
    for (const char byte : bytes) {
        value = value << 8 | static_cast<uint8_t>(byte);
    }
    return value;
}

}  // namespace

FileMetadata::Bytes MetadataBytes(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

ProfileKind KindOfProfile(const FileMetadata::Bytes& profile) {
    constexpr size_t kSpaceAt = 16;
    constexpr size_t kHeaderSize = 128;
    if (profile.empty()) {
        return ProfileKind::None;
    }
    if (profile.size() < kHeaderSize) {
        return ProfileKind::Other;
    }
    const std::string_view space = TextOf(profile).substr(kSpaceAt, 4);
    return space == "GRAY"   ? ProfileKind::Gray
           : space == "RGB " ? ProfileKind::Rgb
                             : ProfileKind::Other;
}

void MakeXmpUpright(FileMetadata::Bytes& xmp) {
    const std::string_view text = TextOf(xmp);
    constexpr std::string_view kTag = "tiff:Orientation";
    for (size_t at = text.find(kTag); at != text.npos; at = text.find(kTag, at)) {
        at += kTag.size();
        // An attribute, ="6", or the start of an element, >6<.
        const size_t digit = text.find_first_not_of("=\"'> ", at);
        if (digit != text.npos && digit > at && text[digit] >= '1' && text[digit] <= '8') {
            xmp[digit] = std::byte{'1'};
        }
    }
}

FileMetadata::Bytes IptcOfPhotoshop(std::string_view resources) {
    // Signature, two bytes of type, a name with its length, padded to even, four bytes of size.
    while (resources.starts_with(kResource) && resources.size() > kIptcResource.size()) {
        const size_t nameLength = static_cast<uint8_t>(resources[kIptcResource.size()]);
        const size_t sizeAt = kIptcResource.size() + (nameLength / 2 + 1) * 2;
        if (resources.size() < sizeAt + 4) {
            break;
        }
        const size_t size = BigEndian(resources.substr(sizeAt, 4));
        const std::string_view rest = resources.substr(sizeAt + 4);
        if (resources.starts_with(kIptcResource)) {
            return MetadataBytes(rest.substr(0, size));
        }
        if (size >= rest.size()) {
            break;
        }
        resources = rest.substr(size + size % 2);
    }
    return {};
}

bool AreWholeRecords(std::string_view iptc) {
    // A mark, two numbers, a length and so many bytes.
    constexpr size_t kHeadSize = 5;
    while (iptc.size() >= kHeadSize && iptc.front() == '\x1C') {
        const size_t size = kHeadSize + BigEndian(iptc.substr(3, 2));
        if (size > iptc.size()) {
            return false;
        }
        iptc.remove_prefix(size);
    }
    return iptc.find_first_not_of('\0') == iptc.npos;
}

std::string PhotoshopOfIptc(const FileMetadata::Bytes& iptc) {
    std::string resources(kIptcResource);
    resources.append(2, '\0');
    for (const int shift : {24, 16, 8, 0}) {
        resources += static_cast<char>(iptc.size() >> shift);
    }
    resources.append(TextOf(iptc)).append(iptc.size() % 2, '\0');
    return resources;
}

}  // namespace imgbasic::host
