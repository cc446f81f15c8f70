#include "host/raster_encoders.h"

#include <windows.h>

#include <icm.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/image_file.h"
#include "host/png_write.h"

namespace imgbasic::host {
namespace {

/// The mean of the pixels from (left, top) to (right, bottom), colours weighted by alpha.
RGBA16 MeanOf(const Picture& picture, int64_t left, int64_t top, int64_t right, int64_t bottom) {
    uint64_t r = 0;
    uint64_t g = 0;
    uint64_t b = 0;
    uint64_t alpha = 0;
    for (int64_t y = top; y < bottom; ++y) {
        for (int64_t x = left; x < right; ++x) {
            const RGBA16& pixel = picture.pixels[static_cast<size_t>(y * picture.width + x)];
            r += uint64_t{pixel.r} * pixel.a;
            g += uint64_t{pixel.g} * pixel.a;
            b += uint64_t{pixel.b} * pixel.a;
            alpha += pixel.a;
        }
    }
    if (alpha == 0) {
        return {};
    }
    const auto count = static_cast<uint64_t>((right - left) * (bottom - top));
    return {static_cast<uint16_t>(r / alpha), static_cast<uint16_t>(g / alpha),
            static_cast<uint16_t>(b / alpha), static_cast<uint16_t>(alpha / count)};
}

}  // namespace

std::vector<std::byte> EncodeByLibrary(const Picture& /*picture*/, const SampleLayout& /*layout*/,
                                       const FileMetadata& /*metadata*/, RasterFormat /*format*/,
                                       const std::string& name, const EncodeOptions& /*options*/) {
    throw FileError(name +
                    ": is of a format that is not written here; save it as PNG or OpenRaster");
}

std::vector<std::byte> EncodeThumbnail(const Picture& picture, const std::string& name) {
    constexpr int32_t kLargest = 256;
    const int64_t longest = std::max({picture.width, picture.height, kLargest});
    const auto reduced = [&](int32_t side) {
        return static_cast<int32_t>(std::max<int64_t>(int64_t{side} * kLargest / longest, 1));
    };
    Picture small{reduced(picture.width), reduced(picture.height), 8, {}};
    for (int64_t y = 0; y < small.height; ++y) {
        const int64_t top = y * picture.height / small.height;
        const int64_t bottom = (y + 1) * picture.height / small.height;
        for (int64_t x = 0; x < small.width; ++x) {
            small.pixels.push_back(MeanOf(picture, x * picture.width / small.width, top,
                                          (x + 1) * picture.width / small.width, bottom));
        }
    }
    return EncodePng(small, SampleLayout(), {}, 6, name);
}

std::vector<std::byte> SrgbProfile() {
    constexpr DWORD kSrgb = 0x73524742;  // LCS_sRGB, which is no portable character constant
    std::wstring path(MAX_PATH, L'\0');
    auto size = static_cast<DWORD>(path.size() * sizeof(wchar_t));
    if (GetStandardColorSpaceProfileW(nullptr, kSrgb, path.data(), &size) == FALSE) {
        return {};
    }
    path.resize(path.find(L'\0'));
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    const std::string profile(std::istreambuf_iterator<char>(file), {});
    return MetadataBytes(profile);
}

}  // namespace imgbasic::host
