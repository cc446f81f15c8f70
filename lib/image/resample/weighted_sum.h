#pragma once

#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// By how much vector forms keep alpha sums multiplied, see WeightedSumLanes.
constexpr double kQuotientRaise = 65536;

/// A channel value from a computed one: truncated, in 16 bits. The value is a weighted mean of
/// channels or a part of an alpha, and rounding takes it no farther out of 16 bits than 32 bits
/// reach.
inline uint16_t ToChannel(double value) {
    return static_cast<uint16_t>(static_cast<int32_t>(value));
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
