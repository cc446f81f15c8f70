#include "host/layer_png.h"

#include <zlib.h>

#include <algorithm>
#include <string_view>

#include "host/image_file.h"

namespace imgbasic::host {
namespace {

std::string_view TextOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

uint32_t BigEndian(std::string_view bytes) {
    uint32_t value = 0;
    for (const char byte : bytes.substr(0, 4)) {
        value = value << 8 | static_cast<unsigned char>(byte);
    }
    return value;
}

std::string BigEndianText(uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

/// The iCCP chunk, the same for every picture; empty without a profile to put there.
std::string ProfileChunk() {
    const std::vector<std::byte> profile = SrgbProfile();
    if (profile.empty()) {
        return {};
    }
    uLongf packedSize = compressBound(static_cast<uLong>(profile.size()));
    std::string packed(packedSize, '\0');
    const int status = compress2(reinterpret_cast<Bytef*>(packed.data()), &packedSize,
                                 reinterpret_cast<const Bytef*>(profile.data()),
                                 static_cast<uLong>(profile.size()), Z_BEST_COMPRESSION);
    if (status != Z_OK) {
        throw std::bad_alloc();
    }
    // A name, its end, the method of compression, the profile.
    using namespace std::string_view_literals;
    const std::string body = std::string("iCCPsRGB\0\0"sv) + packed.substr(0, packedSize);
    const auto check =
        crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    return BigEndianText(static_cast<uint32_t>(body.size() - 4)) + body +
           BigEndianText(static_cast<uint32_t>(check));
}

}  // namespace

std::optional<PngHeader> PngHeaderOf(std::span<const std::byte> head) {
    using namespace std::string_view_literals;
    const std::string_view text = TextOf(head);
    if (text.size() < kPngHeaderSize || !text.starts_with("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR"sv)) {
        return std::nullopt;
    }
    const uint32_t width = BigEndian(text.substr(16));
    const uint32_t height = BigEndian(text.substr(20));
    if (width == 0 || height == 0 || width > INT32_MAX || height > INT32_MAX) {
        return std::nullopt;
    }
    return PngHeader{static_cast<int32_t>(width), static_cast<int32_t>(height),
                     text[24] == 16 ? 16 : 8};
}

std::vector<std::byte> WithSrgbProfile(std::vector<std::byte> png) {
    static const std::string chunk = ProfileChunk();
    const auto bytes = std::as_bytes(std::span(chunk));
    png.insert(png.begin() + kPngHeaderSize, bytes.begin(), bytes.end());
    return png;
}

}  // namespace imgbasic::host
