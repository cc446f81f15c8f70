#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// SplitMix64 (Steele, Lea, Flood, 2014): the same numbers with every compiler and library.
class SplitMix {
  public:
    explicit SplitMix(uint64_t seed) : state_(seed) {}

    uint64_t Next() {
        uint64_t z = state_ += 0x9E3779B97F4A7C15;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
        z = (z ^ z >> 27) * 0x94D049BB133111EB;
        return z ^ z >> 31;
    }
    int32_t Below(int32_t limit) {
        return static_cast<int32_t>(Next() % static_cast<uint32_t>(limit));
    }
    /// From 0 to below 1.
    double Fraction() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

  private:
    uint64_t state_;
};

struct Picture {
    int32_t width;
    int32_t height;
    std::vector<RGBA16> pixels;
};

/// Photos; an image of few colours; any values; values at the edges of the scale.
enum Kind { Opaque, SoftEdged, Translucent, FewColors, Noise, Edges };
constexpr size_t kKinds = 6;
/// The last one is so large that results of it are written past the caches.
constexpr size_t kSizes = 9;

Picture MakePicture(int32_t width, int32_t height, size_t kind, uint64_t seed = 0);

/// All kinds of all sizes from 1 x 1 up, those of one size in a row.
std::span<const Picture> AllPictures();

}  // namespace imgbasic
