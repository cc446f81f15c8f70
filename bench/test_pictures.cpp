#include "bench/test_pictures.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace imgbasic {
namespace {

/// A slow wave along one axis for each of the four channels, from 0 to `height`.
std::vector<std::array<float, 4>> Waves(int32_t length, float height, float phase) {
    std::vector<std::array<float, 4>> waves(static_cast<size_t>(length));
    for (size_t i = 0; i < waves.size(); ++i) {
        for (size_t channel = 0; channel < 4; ++channel) {
            const float angle = static_cast<float>(i) * (0.003F + 0.001F * float(channel)) + phase;
            waves[i][channel] = height * 0.5F * (1.0F + std::sin(angle));
        }
    }
    return waves;
}

/// Marsaglia's xorshift (2003): quick, and good enough for noise.
uint32_t NextRandom(uint32_t& state) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

/// How bright the surface is that covers a pixel: it changes along hard edges.
float Surface(uint32_t x, uint32_t y) {
    const uint32_t cell = (x + y / 3) / 83 * 0x9E3779B1U ^ (y + x / 5) / 59 * 0x85EBCA6BU;
    return static_cast<float>(cell >> 24) * 80.0F;
}

/// The photo with a wave and noise in alpha too, which stays between 1 and kFullScale - 1.
std::vector<RGBA16> Photo(BenchSize size) {
    const auto columns = Waves(size.width, 20000.0F, 0.0F);
    const auto rows = Waves(size.height, 20000.0F, 2.0F);
    std::vector<RGBA16> pixels;
    pixels.reserve(size.Pixels());
    uint32_t random = 1;
    for (size_t y = 0; y < rows.size(); ++y) {
        for (size_t x = 0; x < columns.size(); ++x) {
            const uint32_t noise = NextRandom(random);
            const float surface = Surface(static_cast<uint32_t>(x), static_cast<uint32_t>(y));
            const auto channel = [&](size_t c) {
                const auto grain = static_cast<float>(noise >> (8 * c) & 0xFF) * 16.0F;
                const float value = 1.0F + columns[x][c] + rows[y][c] + surface + grain;
                return static_cast<uint16_t>(std::min(value, float{kFullScale - 1}));
            };
            pixels.push_back({channel(0), channel(1), channel(2), channel(3)});
        }
    }
    return pixels;
}

/// The alpha of a disc in the middle of a tile; `x` and `y` from the tile's corner.
uint16_t DiscAlpha(size_t x, size_t y, size_t tile) {
    constexpr float kRadius = 108.0F;  // where the soft edge ends, in pixels
    constexpr float kSoft = 10.2F;     // its breadth: a tenth of the tile's area
    const float dx = static_cast<float>(x) - static_cast<float>(tile) / 2;
    const float dy = static_cast<float>(y) - static_cast<float>(tile) / 2;
    const float inside = (kRadius - std::sqrt(dx * dx + dy * dy)) / kSoft;
    return static_cast<uint16_t>(std::clamp(inside, 0.0F, 1.0F) * kFullScale);
}

}  // namespace

std::vector<RGBA16> OpaquePhoto(BenchSize size) {
    std::vector<RGBA16> pixels = Photo(size);
    for (RGBA16& pixel : pixels) {
        pixel.a = kFullScale;
    }
    return pixels;
}

std::vector<RGBA16> SoftEdged(BenchSize size) {
    constexpr size_t kTile = 256;
    std::vector<uint16_t> alphas(kTile * kTile);
    for (size_t i = 0; i < alphas.size(); ++i) {
        alphas[i] = DiscAlpha(i % kTile, i / kTile, kTile);
    }
    std::vector<RGBA16> pixels = Photo(size);
    const auto width = static_cast<size_t>(size.width);
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i].a = alphas[i / width % kTile * kTile + i % width % kTile];
    }
    return pixels;
}

std::vector<RGBA16> Translucent(BenchSize size) {
    return Photo(size);
}

}  // namespace imgbasic
