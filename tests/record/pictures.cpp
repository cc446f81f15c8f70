#include "tests/record/pictures.h"

#include <algorithm>
#include <cstdlib>

namespace imgbasic {
namespace {

/// Ripples and surfaces with hard edges under some grain, all channels alike.
RGBA16 PhotoPixel(int32_t x, int32_t y, uint64_t random) {
    const int32_t surface = ((x + y / 3) / 23 * 37 + (y + x / 5) / 17 * 101) % 64 << 8;
    const auto channel = [&](int32_t c) {
        const int32_t ripple = std::abs((x * (c + 2) + y * (5 - c)) % 120 - 60) * 300;
        const auto grain = static_cast<int32_t>(random >> (16 * c) & 0xFFF);
        return static_cast<uint16_t>(20000 + surface + ripple + grain);
    };
    return {channel(0), channel(1), channel(2), channel(3)};
}

/// A disc that takes most of the picture and fades towards its edge.
uint16_t DiscAlpha(const Picture& picture, int32_t x, int32_t y) {
    const int32_t dx = 2 * x + 1 - picture.width;
    const int32_t dy = 2 * y + 1 - picture.height;
    const int64_t radius = picture.width * picture.width + picture.height * picture.height;
    const int64_t alpha = (radius * 3 / 5 - dx * dx - dy * dy) * 4 * kFullScale / radius;
    return static_cast<uint16_t>(std::clamp<int64_t>(alpha, 0, kFullScale));
}

uint16_t EdgeValue(uint64_t bits) {
    static constexpr uint16_t kEdges[] = {0,      1,      0x7F,   0x80,   0xFF,   0x100,
                                          0x7FFF, 0x8000, 0xFE00, 0xFEFF, 0xFF00, 0xFF01,
                                          0xFF80, 0xFF81, 0xFFFF, 0xFF00};
    return (bits & 0x10) != 0 ? static_cast<uint16_t>(bits) : kEdges[bits & 15];
}

}  // namespace

Picture MakePicture(int32_t width, int32_t height, size_t kind, uint64_t seed) {
    Picture picture{width, height, {}};
    SplitMix random(static_cast<uint64_t>(width * 1000 + height) * kKinds + kind + (seed << 32));
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const uint64_t bits = random.Next();
            const auto word = [&](int shift) { return static_cast<uint16_t>(bits >> shift); };
            const auto level = [](int32_t step) { return static_cast<uint16_t>(step * 0x3A00); };
            const RGBA16 photo = PhotoPixel(x, y, bits);
            const RGBA16 kinds[kKinds] = {
                {photo.r, photo.g, photo.b, kFullScale},
                {photo.r, photo.g, photo.b, DiscAlpha(picture, x, y)},
                photo,
                {level(x / 5 % 5), level(y / 3 % 4), level((x + y) % 3), level((x + y) % 7 * 3)},
                {word(0), word(16), word(32), word(48)},
                {EdgeValue(word(0)), EdgeValue(word(16)), EdgeValue(word(32)), EdgeValue(word(48))},
            };
            picture.pixels.push_back(kinds[kind]);
        }
    }
    return picture;
}

std::span<const Picture> AllPictures() {
    static const auto pictures = [] {
        static constexpr int32_t kEdges[kSizes][2] = {{1, 1},    {2, 3},     {7, 5},
                                                      {17, 9},   {33, 31},   {64, 64},
                                                      {129, 67}, {300, 200}, {1031, 513}};
        std::vector<Picture> all;
        for (const auto& [width, height] : kEdges) {
            for (size_t kind = 0; kind < kKinds; ++kind) {
                all.push_back(MakePicture(width, height, kind));
            }
        }
        return all;
    }();
    return pictures;
}

}  // namespace imgbasic
