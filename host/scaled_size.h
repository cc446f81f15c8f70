#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>

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

/// How a new size is asked for: by percentages, by a box to fit in, or by one side or both.
struct SizeRequest {
    std::optional<int32_t> width{};
    std::optional<int32_t> height{};
    std::optional<int32_t> ratio{};        ///< percent of both sides, or of the width alone
    std::optional<int32_t> ratioHeight{};  ///< percent of the height
    std::optional<PixelSize> fit{};

    bool IsEmpty() const { return !width && !height && !ratio && !fit; }
};

/// A size outside what can be made; the message is for people.
class SizeError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The size asked for of a picture of `source`'s size. A side that is not given follows from the
/// other by the aspect ratio, rounded to the nearest; percentages truncate, as the module's do.
/// Throws SizeError for sides outside kSmallestSide to kLargestSide.
PixelSize ScaledSize(const SizeRequest& request, PixelSize source);

}  // namespace imgbasic::host
