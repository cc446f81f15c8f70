#include "host/indexed_png.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "host/image_file.h"
#include "host/sample_depth.h"

namespace imgbasic::host {
namespace {

constexpr size_t kMostColors = 256;

/// Alpha foremost, so that sorting puts translucent colours first: a PNG stores the palette's
/// alpha only up to the last translucent one.
using Color = std::array<uint8_t, 4>;

Color ColorOf(const RGBA16& pixel) {
    return {ToDepth8(pixel.a), ToDepth8(pixel.r), ToDepth8(pixel.g), ToDepth8(pixel.b)};
}

/// The sorted colours of the picture; one more than there is room for when it has too many.
std::vector<Color> ColorsOf(const Picture& picture) {
    std::vector<Color> colors;
    Color previous{};
    for (const RGBA16& pixel : picture.pixels) {
        const Color color = ColorOf(pixel);
        if (color == previous && !colors.empty()) {
            continue;
        }
        previous = color;
        const auto place = std::ranges::lower_bound(colors, color);
        if (place == colors.end() || *place != color) {
            colors.insert(place, color);
        }
        if (colors.size() > kMostColors) {
            break;
        }
    }
    return colors;
}

}  // namespace

std::optional<std::vector<std::byte>> EncodeIndexedPng(const Picture& picture,
                                                       const std::string& name) {
    const std::vector<Color> colors = ColorsOf(picture);
    if (colors.size() > kMostColors) {
        return std::nullopt;
    }
    std::vector<uint8_t> palette;
    for (const auto& [a, r, g, b] : colors) {
        palette.insert(palette.end(), {r, g, b, a});
    }
    std::vector<uint8_t> indices;
    indices.reserve(picture.pixels.size());
    for (const RGBA16& pixel : picture.pixels) {
        const auto place = std::ranges::lower_bound(colors, ColorOf(pixel));
        indices.push_back(static_cast<uint8_t>(place - colors.begin()));
    }

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGBA_COLORMAP;
    image.colormap_entries = static_cast<png_uint_32>(colors.size());
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<std::byte> file(size);
    if (png_image_write_to_memory(&image, file.data(), &size, 0, indices.data(), 0,
                                  palette.data()) == 0) {
        const std::string reason = image.message;
        png_image_free(&image);
        throw FileError(name + ": cannot be encoded as PNG with a palette (" + reason +
                        "); save it without one instead");
    }
    file.resize(size);
    return file;
}

}  // namespace imgbasic::host
