#pragma once

#include <cstdint>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// Composites `source` over `backdrop` in place (source-over of Porter and Duff, 1984, on straight
/// alpha), in double precision, every result truncated toward zero. The order of the operations is
/// part of the definition. Channels above kFullScale are no error: a result that its 16 bits cannot
/// hold keeps its low ones.
inline void CompositeOver(RGBA16& backdrop, RGBA16 source) {
    if (source.a == 0) {
        return;
    }
    constexpr double kFull = kFullScale;
    const double sourceAlpha = source.a / kFull;
    const double backdropAlpha = backdrop.a / kFull;
    const double kept = (1.0 - sourceAlpha) * backdropAlpha;
    const double alpha = backdropAlpha + sourceAlpha - backdropAlpha * sourceAlpha;
    const double inverse = 1.0 / alpha;
    // Through 32 bits, which hold every value that can arise: a direct conversion is undefined for
    // those outside 16 bits.
    const auto truncated = [](double value) {
        return static_cast<uint16_t>(static_cast<int32_t>(value));
    };
    const auto channel = [&](uint16_t over, uint16_t below) {
        return truncated((over * sourceAlpha + below * kept) * inverse);
    };
    backdrop = {channel(source.r, backdrop.r), channel(source.g, backdrop.g),
                channel(source.b, backdrop.b), truncated(alpha * kFull)};
}

/// `pixel` composited over transparent white. Rounding leaves every channel as it is or takes one
/// off it; opaque pixels stay as they are, fully transparent ones become transparent white.
inline RGBA16 OverTransparentWhite(RGBA16 pixel) {
    RGBA16 result{kFullScale, kFullScale, kFullScale, 0};
    CompositeOver(result, pixel);
    return result;
}

}  // namespace imgbasic
