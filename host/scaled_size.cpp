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

/// A numerator has at most 9 digits, so that the product fits.
int64_t Scaled(int32_t side, const Ratio& ratio) {
    return int64_t{side} * ratio.numerator / ratio.denominator;
}

/// Takes digits from the front of `text` to the end of `number`; how many, or nothing when they
/// make it too long.
std::optional<size_t> TakeDigits(std::string_view& text, int64_t& number) {
    constexpr int64_t kTooLong = 1'000'000'000;
    size_t count = 0;
    while (count < text.size() && text[count] >= '0' && text[count] <= '9') {
        number = number * 10 + (text[count] - '0');
        ++count;
        if (number >= kTooLong || count > 9) {
            return std::nullopt;
        }
    }
    text.remove_prefix(count);
    return count;
}

WideSize Unbounded(const SizeRequest& request, PixelSize source) {
    if (request.ratio) {
        return {Scaled(source.width, *request.ratio),
                Scaled(source.height, request.ratioHeight.value_or(*request.ratio))};
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

bool TakeCharacter(std::string_view& text, char wanted) {
    const bool found = text.starts_with(wanted);
    text.remove_prefix(found ? 1 : 0);
    return found;
}

}  // namespace

std::optional<int32_t> Ratio::WholePercent() const {
    const int64_t percent = numerator * 100 / denominator;
    return percent * denominator == numerator * 100 && percent <= kRatio.most
               ? std::optional(static_cast<int32_t>(percent))
               : std::nullopt;
}

std::optional<Ratio> ParseRatio(std::string_view text) {
    Ratio ratio{0, 100};
    if (TakeDigits(text, ratio.numerator).value_or(0) == 0) {
        return std::nullopt;
    }
    if (TakeCharacter(text, '/')) {
        ratio.denominator = 0;
        (void)TakeDigits(text, ratio.denominator);
    } else {
        if (TakeCharacter(text, '.')) {
            const std::optional<size_t> decimals = TakeDigits(text, ratio.numerator);
            if (!decimals) {
                return std::nullopt;
            }
            for (size_t i = 0; i < *decimals; ++i) {
                ratio.denominator *= 10;
            }
        }
        (void)TakeCharacter(text, '%');
    }
    const bool isRatio = text.empty() && ratio.numerator > 0 && ratio.denominator > 0;
    return isRatio ? std::optional(ratio) : std::nullopt;
}

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
