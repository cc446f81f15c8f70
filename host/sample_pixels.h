#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

#include "host/sample_depth.h"

namespace imgbasic::host {

/// A pixel, put together as one number: storing its channels one by one takes three times as long.
constexpr RGBA16 PixelOf(uint16_t r, uint16_t g, uint16_t b, uint16_t a) {
    if constexpr (std::endian::native == std::endian::little) {
        return std::bit_cast<RGBA16>(r | uint64_t{g} << 16U | uint64_t{b} << 32U |
                                     uint64_t{a} << 48U);
    }
    return {r, g, b, a};
}

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
                return PixelOf(gray, gray, gray, kFullScale);
            });
        case 2:
            return each([&](const Sample* s) {
                const uint16_t gray = convert(s[0]);
                return PixelOf(gray, gray, gray, convert(s[1]));
            });
        case 3:
            return each([&](const Sample* s) {
                return PixelOf(convert(s[0]), convert(s[1]), convert(s[2]), kFullScale);
            });
        default:
            return each([&](const Sample* s) {
                return PixelOf(convert(s[0]), convert(s[1]), convert(s[2]), convert(s[3]));
            });
    }
}

/// Turns pixels into those of a file of 8 or 16 bits a channel, which is the size of `Sample`.
template <typename Sample>
void RoundPixels(std::span<const RGBA16> pixels, std::span<std::array<Sample, 4>> rounded) {
    // All channels as one run of numbers, which compilers turn into vector code.
    const auto* const from = reinterpret_cast<const uint16_t*>(pixels.data());
    auto* const to = reinterpret_cast<Sample*>(rounded.data());
    for (size_t i = 0; i < 4 * pixels.size(); ++i) {
        if constexpr (sizeof(Sample) == 1) {
            to[i] = ToDepth8(from[i]);
        } else {
            to[i] = ToDepth16(from[i]);
        }
    }
}

/// Takes `bands` channels, as ConvertSamples understands them, out of all four.
template <typename Sample>
void PickBands(std::span<const std::array<Sample, 4>> pixels, size_t bands, Sample* out) {
    // The most frequent case by itself. All but the last pixel are written with their alpha, which
    // the next one overwrites.
    if (bands == 3 && !pixels.empty()) {
        for (const auto& pixel : pixels.first(pixels.size() - 1)) {
            std::memcpy(out, pixel.data(), sizeof pixel);
            out += 3;
        }
        std::memcpy(out, pixels.back().data(), 3 * sizeof(Sample));
        return;
    }
    const size_t step = bands == 4 ? 1 : 3;
    for (const auto& pixel : pixels) {
        for (size_t band = 0; band < bands; ++band) {
            *out++ = pixel[band * step];
        }
    }
}

/// Writes `bands` channels of the pixels at 8 bits, in parts that stay in the nearest cache.
inline void RoundToBytes(std::span<const RGBA16> pixels, size_t bands, uint8_t* out) {
    std::array<std::array<uint8_t, 4>, 1024> rounded;
    for (size_t first = 0; first < pixels.size(); first += rounded.size()) {
        const size_t count = std::min(rounded.size(), pixels.size() - first);
        const auto part = std::span(rounded).first(count);
        RoundPixels<uint8_t>(pixels.subspan(first, count), part);
        PickBands<uint8_t>(part, bands, out);
        out += count * bands;
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
