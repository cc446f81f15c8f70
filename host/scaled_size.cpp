#include "host/scaled_size.h"

#include <algorithm>
#include <string>

namespace imgbasic::host {
namespace {

struct WideSize {
    int64_t width;
    int64_t height;
};

/// value x numerator / denominator to the nearest whole number, at least one pixel.
int64_t Proportion(int64_t value, int64_t numerator, int64_t denominator) {
    return std::max<int64_t>((2 * value * numerator + denominator) / (2 * denominator), 1);
}

WideSize ForWidth(int64_t width, PixelSize source) {
    return {width, Proportion(width, source.height, source.width)};
}

WideSize ForHeight(int64_t height, PixelSize source) {
    return {Proportion(height, source.width, source.height), height};
}

WideSize Unbounded(const SizeRequest& request, PixelSize source) {
    if (request.ratio) {
        return {int64_t{source.width} * *request.ratio / 100,
                int64_t{source.height} * request.ratioHeight.value_or(*request.ratio) / 100};
    }
    if (request.fit) {
        const WideSize wide = ForWidth(request.fit->width, source);
        return wide.height <= request.fit->height ? wide : ForHeight(request.fit->height, source);
    }
    if (request.width && request.height) {
        return {*request.width, *request.height};
    }
    return request.width ? ForWidth(*request.width, source)
                         : ForHeight(request.height.value_or(source.height), source);
}

bool IsPossible(int64_t side) {
    return side >= kSmallestSide && side <= kLargestSide;
}

}  // namespace

PixelSize ScaledSize(const SizeRequest& request, PixelSize source) {
    const WideSize size = Unbounded(request, source);
    if (!IsPossible(size.width) || !IsPossible(size.height)) {
        throw SizeError("the new size would be " + std::to_string(size.width) + " x " +
                        std::to_string(size.height) + "; each side must be " +
                        std::to_string(kSmallestSide) + " to " + std::to_string(kLargestSide) +
                        " pixels");
    }
    return {static_cast<int32_t>(size.width), static_cast<int32_t>(size.height)};
}

}  // namespace imgbasic::host
