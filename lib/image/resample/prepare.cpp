#include "lib/image/resample/prepare.h"

#include <bit>
#include <cmath>

namespace imgbasic {
namespace {

constexpr double kSmallest = 1e-6;  ///< a rectangle below this size is empty

/// Beyond this a position has no fraction left, and no image reaches it.
constexpr double kLargest = 4503599627370496.0;

/// Whether a number given is finite and below 2^490. Clipping multiplies two such numbers (sums of
/// a few of them, at most) and divides by kSmallest or more; so nothing on the way overflows. The
/// exponent says it, as comparing NaN would raise an exception that a host may have unmasked.
bool IsModerate(double value) {
    constexpr uint64_t kExponentOfOne = 1023;
    return (std::bit_cast<uint64_t>(value) >> 52 & 0x7FF) < kExponentOfOne + 490;
}

bool IsModerate(const ResampleRect& rect) {
    return IsModerate(rect.x) && IsModerate(rect.y) && IsModerate(rect.width) &&
           IsModerate(rect.height);
}

/// The two rectangles in one direction.
struct Extents {
    double source;
    double sourceSize;
    double target;
    double targetSize;
    int32_t sourceLimit;
    int32_t targetLimit;

    bool AreTooSmall() const { return sourceSize < kSmallest || targetSize < kSmallest; }
};

// The four cuts below answer false when nothing is left. Cutting off what lies before an image
// lengthens the cut rectangle by that much instead of shortening it: results depend on it.

bool CutBeforeSource(Extents& e) {
    if (e.source < 0) {
        const double cut = -e.source / e.sourceSize * e.targetSize;
        e.sourceSize -= e.source;
        e.targetSize -= cut;
        if (e.AreTooSmall()) {
            return false;
        }
        e.target += cut;
        e.source = 0;
    }
    return true;
}

bool CutAfterSource(Extents& e) {
    if (e.source + e.sourceSize > e.sourceLimit) {
        const double left = e.sourceLimit - e.source;
        e.targetSize = left / e.sourceSize * e.targetSize;
        e.sourceSize = left;
        return !e.AreTooSmall();
    }
    return true;
}

void CutBeforeTarget(Extents& e) {
    if (e.target < 0) {
        const double cut = -e.target / e.targetSize * e.sourceSize;
        e.sourceSize -= cut;
        e.targetSize -= e.target;
        e.source += cut;
        e.target = 0;
    }
}

void CutAfterTarget(Extents& e) {
    if (e.target + e.targetSize > e.targetLimit) {
        const double left = e.targetLimit - e.target;
        e.sourceSize = left / e.targetSize * e.sourceSize;
        e.targetSize = left;
    }
}

/// The cuts at the destination test the columns only: rows that come out empty or upside down
/// find no row to draw, or none in the source.
bool ClipToImages(Extents& columns, Extents& rows) {
    if (!CutBeforeSource(columns) || !CutBeforeSource(rows) || !CutAfterSource(columns) ||
        !CutAfterSource(rows)) {
        return false;
    }
    CutBeforeTarget(columns);
    if (columns.AreTooSmall()) {
        return false;
    }
    CutBeforeTarget(rows);
    CutAfterTarget(columns);
    if (columns.AreTooSmall()) {
        return false;
    }
    CutAfterTarget(rows);
    return true;
}

bool AreUsable(const Extents& e) {
    return std::abs(e.source) < kLargest && std::abs(e.sourceSize) < kLargest &&
           std::abs(e.target) < kLargest && e.targetSize > 0 && e.targetSize < kLargest;
}

ResampleAxis MakeAxis(const Extents& e, int32_t clipBegin, int32_t clipEnd) {
    ResampleAxis axis;
    const double targetEnd = e.target + e.targetSize;
    const int64_t first = std::max<int64_t>(ToIndex(std::floor(e.target)), 0);
    const int64_t end = std::min<int64_t>(ToIndex(std::ceil(targetEnd)), e.targetLimit);
    if (first < end) {
        axis.first = static_cast<int32_t>(first);
        axis.coverage.reserve(static_cast<size_t>(end - first));
        axis.sum.reserve(static_cast<size_t>(end - first) + 1);
        axis.sum.push_back(0);
        for (int64_t i = first; i < end; ++i) {
            axis.coverage.push_back(Overlap(static_cast<double>(i), e.target, targetEnd));
            axis.sum.push_back(axis.sum.back() + axis.coverage.back());
        }
    }
    axis.targetSize = e.targetSize;
    axis.source = e.source;
    axis.sourceSize = e.sourceSize;
    axis.sourceLimit = e.sourceLimit;
    axis.clipBegin = clipBegin;
    axis.clipEnd = clipEnd;
    return axis;
}

}  // namespace

std::optional<Resampling> PrepareResampling(const ResampleTarget& destination,
                                            const ResampleSource& source,
                                            std::optional<PixelRect> clip) {
    if (source.pixels == nullptr || source.width < 1 || source.height < 1 ||
        destination.pixels == nullptr || destination.width < 1 || destination.height < 1 ||
        !IsModerate(source.rect) || !IsModerate(destination.rect)) {
        return std::nullopt;
    }
    const ResampleRect& from = source.rect;
    const ResampleRect& to = destination.rect;
    Extents columns{from.x,       from.width < 0 ? source.width : from.width,
                    to.x,         to.width,
                    source.width, destination.width};
    Extents rows{from.y,        from.height < 0 ? source.height : from.height,
                 to.y,          to.height,
                 source.height, destination.height};
    const PixelRect wanted = clip.value_or(PixelRect{0, 0, source.width, source.height});
    if (columns.AreTooSmall() || rows.AreTooSmall() || wanted.IsEmpty() ||
        !ClipToImages(columns, rows) || !AreUsable(columns) || !AreUsable(rows)) {
        return std::nullopt;
    }
    const PixelRect inside = ClipToImage(wanted, source.width, source.height);
    Resampling resampling{MakeAxis(columns, inside.left, inside.right),
                          MakeAxis(rows, inside.top, inside.bottom)};
    if (resampling.columns.Count() == 0 || resampling.rows.Count() == 0) {
        return std::nullopt;
    }
    return resampling;
}

}  // namespace imgbasic
