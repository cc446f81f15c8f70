#include "host/cli/picture_change.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>

#include "host/flatten.h"

namespace imgbasic::host {
namespace {

size_t CountColors(std::vector<RGBA16> pixels) {
    // What a fully transparent pixel hides is no colour.
    for (RGBA16& pixel : pixels) {
        pixel = pixel.a == 0 ? RGBA16{} : pixel;
    }
    const auto value = [](RGBA16 pixel) { return std::bit_cast<uint64_t>(pixel); };
    const auto last = std::unique(pixels.begin(), pixels.end());
    std::ranges::sort(pixels.begin(), last, {}, value);
    return static_cast<size_t>(std::unique(pixels.begin(), last) - pixels.begin());
}

/// What a pixel adds to what is below it, and how much of that it covers, in 8-bit steps.
std::array<double, 4> Visible(RGBA16 pixel) {
    const double cover = double{1} * pixel.a / kFullScale / 256;
    return {pixel.r * cover, pixel.g * cover, pixel.b * cover, double{1} * pixel.a / 256};
}

double MeanSquaredError(const std::vector<RGBA16>& a, const std::vector<RGBA16>& b) {
    double sum = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        const std::array<double, 4> before = Visible(a[i]);
        const std::array<double, 4> after = Visible(b[i]);
        for (size_t channel = 0; channel < before.size(); ++channel) {
            const double steps = before[channel] - after[channel];
            sum += steps * steps;
        }
    }
    return sum / (4 * static_cast<double>(a.size()));
}

}  // namespace

std::string DescribeReduction(const Document& source, const Document& result) {
    const std::vector<RGBA16> before = Flatten(source);
    const std::vector<RGBA16> after = Flatten(result);
    char text[80];
    std::snprintf(text, sizeof text, "%zu colours, mean squared error %.3f", CountColors(after),
                  MeanSquaredError(before, after));
    return text;
}

}  // namespace imgbasic::host
