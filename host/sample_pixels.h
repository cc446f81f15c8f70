#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/sample_depth.h"

namespace imgbasic::host {

/// Turns file samples of 1 to 4 or more bands into pixels; what is beyond the fourth is no colour.
/// Those of 16 bits may come marked, for TakeLowerSamples.
template <typename Sample>
void ConvertSamples(const Sample* samples, int bands, std::span<RGBA16> pixels) {
    const auto convert = [](Sample sample) {
        if constexpr (sizeof(Sample) == 1) {
            return FromDepth8(sample);
        } else {
            return MarkedFromDepth16(sample);
        }
    };
    const auto each = [&](auto pick) {
        for (RGBA16& pixel : pixels) {
            pixel = pick(samples);
            samples += bands;
        }
    };
    switch (bands) {
        case 1:
            return each([&](const Sample* s) {
                const uint16_t gray = convert(s[0]);
                return RGBA16{gray, gray, gray, kFullScale};
            });
        case 2:
            return each([&](const Sample* s) {
                const uint16_t gray = convert(s[0]);
                return RGBA16{gray, gray, gray, convert(s[1])};
            });
        case 3:
            return each([&](const Sample* s) {
                return RGBA16{convert(s[0]), convert(s[1]), convert(s[2]), kFullScale};
            });
        default:
            return each([&](const Sample* s) {
                return RGBA16{convert(s[0]), convert(s[1]), convert(s[2]), convert(s[3])};
            });
    }
}

/// Replaces the marks by the document values that they stand for and returns where they were;
/// empty when there were none.
inline std::vector<bool> TakeLowerSamples(std::span<RGBA16> pixels) {
    std::vector<bool> lower;
    size_t index = 0;
    for (RGBA16& pixel : pixels) {
        for (uint16_t* channel : {&pixel.r, &pixel.g, &pixel.b, &pixel.a}) {
            if (*channel > kFullScale) {
                lower.resize(pixels.size() * 4);
                lower[index] = true;
                *channel = Unmarked(*channel);
            }
            ++index;
        }
    }
    return lower;
}

}  // namespace imgbasic::host
