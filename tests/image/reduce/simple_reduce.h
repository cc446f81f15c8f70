#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace imgbasic {

/// Pixels are words 0xAARRGGBB.
struct SimpleImage {
    int width;
    int height;
    std::vector<uint32_t> pixels;
};

/// Blue, green, red, alpha.
using SimpleColor = std::array<int, 4>;
using SimplePalette = std::vector<SimpleColor>;

// Colour reduction step by step, without any shortcut: what the fast code is held against.

SimplePalette SimpleQuantize(const SimpleImage& image, int countSpec);
SimplePalette SimpleGraduate(const SimpleImage& image, int target);
/// Indices row by row, without padding.
std::vector<uint8_t> SimpleMap(const SimplePalette& palette, const SimpleImage& image,
                               int ditherType);

}  // namespace imgbasic
