#include "samples/canvas.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "host/flatten.h"
#include "host/sample_depth.h"

namespace imgbasic::samples {
namespace {

struct Glyph {
    char letter;
    const char* dots;  ///< seven rows of five
};

constexpr Glyph kFont[] = {
    {'A', ".###.#...##...#######...##...##...#"}, {'B', "####.#...##...#####.#...##...#####."},
    {'C', ".###.#...##....#....#....#...#.###."}, {'D', "####.#...##...##...##...##...#####."},
    {'E', "######....#....####.#....#....#####"}, {'G', ".###.#...##....#.####...##...#.####"},
    {'I', ".###...#....#....#....#....#...###."}, {'K', "#...##..#.#.#..##...#.#..#..#.#...#"},
    {'L', "#....#....#....#....#....#....#####"}, {'M', "#...###.###.#.##.#.##...##...##...#"},
    {'P', "####.#...##...#####.#....#....#...."}, {'S', ".#####....#.....###.....#....#####."},
    {'T', "#####..#....#....#....#....#....#.."}, {'U', "#...##...##...##...##...##...#.###."},
    {'X', "#...##...#.#.#...#...#.#.#...##...#"}, {'0', ".###.#...##..###.#.###..##...#.###."},
    {'1', "..#...##....#....#....#....#...###."}, {'2', ".###.#...#....#...#...#...#...#####"},
    {'8', ".###.#...##...#.###.#...##...#.###."}, {'.', ".........................##...##..."},
};

}  // namespace

Color Mix(Color a, Color b, double t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

double Smooth(double low, double high, double value) {
    const double t = std::clamp((value - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double Hash(int32_t x, int32_t y, uint32_t seed) {
    // Multiply and shift until every bit of the input reaches every bit of the output.
    uint32_t bits = static_cast<uint32_t>(x) * 0x9E3779B1U +
                    static_cast<uint32_t>(y) * 0x85EBCA77U + seed * 0xC2B2AE3DU;
    bits = (bits ^ (bits >> 15)) * 0x2C1B3C6DU;
    bits = (bits ^ (bits >> 12)) * 0x297A2D39U;
    bits ^= bits >> 15;
    return bits / 4294967296.0;
}

double Noise(double x, double y, int octaves, uint32_t seed) {
    double sum = 0;
    double weight = 0.5;
    double total = 0;
    for (int octave = 0; octave < octaves; ++octave) {
        const auto column = static_cast<int32_t>(std::floor(x));
        const auto row = static_cast<int32_t>(std::floor(y));
        const double tx = Smooth(0, 1, x - column);
        const double ty = Smooth(0, 1, y - row);
        const uint32_t layer = seed + static_cast<uint32_t>(octave);
        const double upper =
            Hash(column, row, layer) * (1 - tx) + Hash(column + 1, row, layer) * tx;
        const double lower =
            Hash(column, row + 1, layer) * (1 - tx) + Hash(column + 1, row + 1, layer) * tx;
        sum += weight * (upper * (1 - ty) + lower * ty);
        total += weight;
        weight /= 2;
        x *= 2;
        y *= 2;
    }
    return sum / total;
}

Canvas::Canvas(int32_t width, int32_t height)
    : width_(width), height_(height), pixels_(PixelCount(width, height)) {
}

void Canvas::Put(int32_t x, int32_t y, Color color, double coverage) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_ || coverage <= 0) {
        return;
    }
    const auto channel = [](double value) {
        return static_cast<uint16_t>(std::clamp(value * 256 + 0.5, 0.0, double{kFullScale}));
    };
    RGBA16& pixel =
        pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
    pixel = host::Composite({channel(color.r), channel(color.g), channel(color.b),
                             channel(std::min(coverage, 1.0) * 255)},
                            host::CompositionKind::Normal, pixel);
}

void Canvas::Line(int32_t x0, int32_t y0, int32_t x1, int32_t y1, Color color) {
    const int32_t dx = std::abs(x1 - x0);
    const int32_t dy = -std::abs(y1 - y0);
    int32_t error = dx + dy;
    while (true) {
        Put(x0, y0, color);
        if (x0 == x1 && y0 == y1) {
            return;
        }
        const int32_t twice = 2 * error;
        if (twice >= dy) {
            error += dy;
            x0 += x0 < x1 ? 1 : -1;
        }
        if (twice <= dx) {
            error += dx;
            y0 += y0 < y1 ? 1 : -1;
        }
    }
}

void Canvas::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom, Color color,
                       double coverage) {
    for (int32_t y = top; y < bottom; ++y) {
        for (int32_t x = left; x < right; ++x) {
            Put(x, y, color, coverage);
        }
    }
}

void Canvas::Text(int32_t x, int32_t y, int32_t dot, const char* text, Color color) {
    for (const char letter : std::string_view(text)) {
        const auto* const glyph = std::find_if(std::begin(kFont), std::end(kFont),
                                               [=](const Glyph& g) { return g.letter == letter; });
        for (int32_t i = 0; glyph != std::end(kFont) && i < 35; ++i) {
            if (glyph->dots[i] == '#') {
                const int32_t left = x + i % 5 * dot;
                const int32_t top = y + i / 5 * dot;
                Rectangle(left, top, left + dot, top + dot, color);
            }
        }
        x += 6 * dot;
    }
}

host::Layer Canvas::ToLayer(std::string name) const {
    host::Layer layer;
    layer.name = std::move(name);
    layer.pixels = pixels_;
    for (RGBA16& pixel : layer.pixels) {
        const auto cut = [](uint16_t value) { return host::FromDepth8(host::ToDepth8(value)); };
        pixel = {cut(pixel.r), cut(pixel.g), cut(pixel.b), cut(pixel.a)};
        pixel = pixel.a == 0 ? RGBA16{} : pixel;
    }
    layer.bounds = host::BoundsOf(layer.pixels, width_, height_);
    return layer;
}

}  // namespace imgbasic::samples
