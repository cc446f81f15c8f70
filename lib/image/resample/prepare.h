#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "lib/image/resample/resample.h"

namespace imgbasic {

/// One direction of a resampling: the destination columns (or rows) that are drawn, and where
/// they lie in the source.
struct ResampleAxis {
    int32_t first = 0;             ///< the first column drawn
    std::vector<double> coverage;  ///< how much of each drawn column the rectangle covers
    std::vector<double> sum;       ///< coverages before each column, and before the end
    double targetSize = 0;         ///< of the clipped rectangles
    double source = 0;
    double sourceSize = 0;
    int32_t sourceLimit = 0;  ///< columns of the source image
    int32_t clipBegin = 0;    ///< the clip rectangle within the source image, may be empty
    int32_t clipEnd = 0;

    size_t Count() const { return coverage.size(); }

    bool HasClip() const { return clipBegin < clipEnd; }
    bool IsInClip(int64_t index) const { return index >= clipBegin && index < clipEnd; }

    /// Where in the source the coverage sum `covered` is reached.
    double SourcePosition(double covered) const {
        return covered * sourceSize * (1.0 / targetSize) + source;
    }
};

struct Resampling {
    ResampleAxis columns;
    ResampleAxis rows;

    /// The first pixel drawn in the j-th row drawn.
    RGBA16* TargetRow(const ResampleTarget& target, size_t j) const {
        return target.pixels + (int64_t{rows.first} + static_cast<int64_t>(j)) * target.width +
               columns.first;
    }
};

/// The row at `index`, which must be inside the image.
inline const RGBA16* SourceRow(const ResampleSource& source, int64_t index) {
    return source.pixels + index * source.width;
}

/// Checks the arguments of a kernel and clips its rectangles; nothing when there is nothing to
/// draw.
std::optional<Resampling> PrepareResampling(const ResampleTarget& destination,
                                            const ResampleSource& source,
                                            std::optional<PixelRect> clip);

/// How much of the pixel at `index` lies in [begin, end), for a pixel that the interval touches.
inline double Overlap(double index, double begin, double end) {
    return index - begin < 0 ? index - begin + 1 : std::min(end - index, 1.0);
}

/// A whole position as an integer, far ones cut off where no image reaches.
inline int64_t ToIndex(double position) {
    constexpr double kFar = 4.0e18;
    return static_cast<int64_t>(std::clamp(position, -kFar, kFar));
}

}  // namespace imgbasic
