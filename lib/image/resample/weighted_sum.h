#pragma once

#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// A channel value from a computed one: truncated, in 16 bits. Values that no image gives (beyond
/// 32 bits) become 0.
inline uint16_t ToChannel(double value) {
    return value > -2147483649.0 && value < 2147483648.0
               ? static_cast<uint16_t>(static_cast<int32_t>(value))
               : uint16_t{0};
}

/// Sums of weighted pixels, colours weighted by alpha as well, so that transparent pixels do not
/// tint. Alpha sums are in units of full opacity, colour sums in units of full scale.
struct WeightedSum {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 0;

    void Add(RGBA16 pixel, double weight) {
        const double share = pixel.a * weight / kFullScale;
        r += pixel.r * share / kFullScale;
        g += pixel.g * share / kFullScale;
        b += pixel.b * share / kFullScale;
        a += share;
    }

    /// The mean colour with the given alpha; `a` must not be 0.
    RGBA16 Mean(double alpha) const {
        const double scale = kFullScale / a;
        return {ToChannel(scale * r), ToChannel(scale * g), ToChannel(scale * b), ToChannel(alpha)};
    }
};

}  // namespace imgbasic
