#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "plugin/imgbasic/scaling.h"

namespace imgbasic::host {

/// The sides that the scaling filter can make, pixels.
constexpr int32_t kSmallestSide = kSide.least;
constexpr int32_t kLargestSide = kSide.most;

struct PixelSize {
    int32_t width = 0;
    int32_t height = 0;

    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// A part of a side, or a multiple of it, as a fraction of positive whole numbers below 10^11.
struct Ratio {
    int64_t numerator = 1;
    int64_t denominator = 1;

    /// The same in percent; nothing where that is no whole number.
    std::optional<int32_t> WholePercent() const;

    friend bool operator==(const Ratio&, const Ratio&) = default;
};

/// Reads a percentage, "150", "33.3" or "33.3%", or a fraction, "1/3"; at most 9 digits a number.
/// Nothing for anything else, zero included.
std::optional<Ratio> ParseRatio(std::string_view text);

/// How a new size is asked for: by ratios, by a box to fit in, or by one side or both.
struct SizeRequest {
    std::optional<int32_t> width{};
    std::optional<int32_t> height{};
    std::optional<Ratio> ratio{};        ///< of both sides, or of the width alone
    std::optional<Ratio> ratioHeight{};  ///< of the height
    std::optional<PixelSize> fit{};

    bool IsEmpty() const { return !width && !height && !ratio && !fit; }
};

/// A size outside what can be made; the message is for people.
class SizeError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The size asked for of a picture of `source`'s size. A side that is not given follows from the
/// other by the aspect ratio, rounded to the nearest; ratios truncate, as the module's percentages
/// do, and are exact until then.
/// Throws SizeError for sides outside kSmallestSide to kLargestSide.
PixelSize ScaledSize(const SizeRequest& request, PixelSize source);

}  // namespace imgbasic::host
