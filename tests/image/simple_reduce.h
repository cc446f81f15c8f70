#pragma once

#include <array>
#include <cstdint>
#include <map>
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

/// Nearest-colour search in one palette, in full up to 16 entries and over a cell's list above.
class SimpleNearest {
  public:
    explicit SimpleNearest(const SimplePalette& palette);
    int operator()(const SimpleColor& query);

  private:
    std::vector<int> Candidates(int cell) const;

    SimplePalette palette_;
    int alphaMode_ = 0;
    std::map<int, std::vector<int>> own_;    ///< entries by cell
    std::map<int, std::vector<int>> lists_;  ///< candidates by cell
};

/// Indices row by row, without padding.
std::vector<uint8_t> SimpleMap(const SimplePalette& palette, const SimpleImage& image,
                               int ditherType);

}  // namespace imgbasic
