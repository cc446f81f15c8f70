#include "host/cli/picture_change.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>

#include "host/flatten.h"

namespace imgbasic::host {
namespace {

size_t CountColors(std::vector<RGBA16> pixels) {
    const auto value = [](RGBA16 pixel) { return std::bit_cast<uint64_t>(pixel); };
    const auto last = std::unique(pixels.begin(), pixels.end());
    std::ranges::sort(pixels.begin(), last, {}, value);
    return static_cast<size_t>(std::unique(pixels.begin(), last) - pixels.begin());
}

double SquaredDifference(uint16_t a, uint16_t b) {
    const double steps = (double{1} * a - b) / 256;
    return steps * steps;
}

double MeanSquaredError(const std::vector<RGBA16>& a, const std::vector<RGBA16>& b) {
    double sum = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        sum += SquaredDifference(a[i].r, b[i].r) + SquaredDifference(a[i].g, b[i].g) +
               SquaredDifference(a[i].b, b[i].b) + SquaredDifference(a[i].a, b[i].a);
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
