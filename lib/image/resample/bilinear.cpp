#include <cmath>

#include "lib/image/resample/bilinear_forms.h"
#include "lib/image/resample/prepare.h"
#include "lib/image/resample/stride.h"
#include "lib/image/resample/weighted_sum.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

/// Where a sample is read.
struct Resolved {
    int64_t index;
    bool used;    ///< false: there is no pixel
    bool inside;  ///< its weight counts as inside
};

int64_t Wrap(int64_t index, int64_t begin, int64_t size) {
    const int64_t remainder = (index - begin) % size;
    return begin + (remainder < 0 ? remainder + size : remainder);
}

bool LooksAtClip(int32_t boundary) {
    return boundary == BoundaryClip || boundary == BoundaryClamp || boundary == BoundaryRepeat;
}

/// A clip rectangle that is looked at must not be empty.
Resolved Resolve(int64_t index, int32_t boundary, const ResampleAxis& axis) {
    const bool inClip = axis.IsInClip(index);
    switch (boundary) {
        case BoundaryClip:
            return {index, inClip, inClip};
        case BoundaryClamp:
            return {std::clamp<int64_t>(index, axis.clipBegin, axis.clipEnd - 1), true, inClip};
        case BoundaryRepeat:
            return {Wrap(index, axis.clipBegin, axis.clipEnd - axis.clipBegin), true, inClip};
        default:
            return {index, index >= 0 && index < axis.sourceLimit, true};
    }
}

/// The tables of BilinearColumns.
struct Side {
    std::vector<int32_t> index;
    std::vector<double> weight;
    std::vector<double> inside;

    void Add(int64_t sample, double sampleWeight, int32_t boundary, const ResampleAxis& axis) {
        const Resolved resolved = Resolve(sample, boundary, axis);
        index.push_back(
            static_cast<int32_t>(std::clamp<int64_t>(resolved.index, 0, axis.sourceLimit - 1)));
        weight.push_back(resolved.used ? sampleWeight : 0);
        inside.push_back(resolved.inside ? sampleWeight : 0);
    }

    BilinearColumns Columns() const { return {index.data(), weight.data(), inside.data()}; }

    BilinearSourceRow Row(size_t j, const ResampleSource& source) const {
        return {SourceRow(source, index[j]), weight[j], inside[j]};
    }
};

/// The samples before and after the centre of each destination column (or row).
struct Samples {
    Side low;
    Side high;
};

Samples FindSamples(const ResampleAxis& axis, int32_t boundary) {
    Samples samples;
    for (size_t i = 0; i < axis.Count(); ++i) {
        const double position =
            (axis.sum[i] + axis.sum[i + 1]) * axis.sourceSize * (0.5 / axis.targetSize) +
            axis.source;
        const double high = std::floor(position + 0.5);
        const double fraction = position - high + 0.5;
        samples.low.Add(ToIndex(high) - 1, 1 - fraction, boundary, axis);
        samples.high.Add(ToIndex(high), fraction, boundary, axis);
    }
    return samples;
}

/// Where the runs of columns end in which the indices of both sides ascend: at the end, and where
/// a repeated clip rectangle begins anew.
std::vector<size_t> FindEndsOfAscent(const Samples& columns) {
    const std::vector<int32_t>& low = columns.low.index;
    const std::vector<int32_t>& high = columns.high.index;
    std::vector<size_t> ends;
    for (size_t i = 1; i < low.size(); ++i) {
        if (low[i] < low[i - 1] || high[i] < high[i - 1]) {
            ends.push_back(i);
        }
    }
    ends.push_back(low.size());
    return ends;
}

/// BilinearRow::strides.
std::vector<uint8_t> FindPairStrides(const Samples& columns, int32_t sourceWidth) {
    const Side& low = columns.low;
    const Side& high = columns.high;
    const auto isPair = [&](size_t i) {
        return high.index[i] == low.index[i] + 1 && low.inside[i] == low.weight[i] &&
               high.inside[i] == high.weight[i];
    };
    std::vector<uint8_t> strides(low.index.size());
    size_t pairs = 0;
    for (size_t i = strides.size(); i-- > 0;) {
        pairs = isPair(i) ? pairs + 1 : 0;
        if (pairs >= kStrideColumns) {
            strides[i] = static_cast<uint8_t>(FindStride(low.index, i, 0, sourceWidth));
        }
    }
    return strides;
}

/// BilinearRow::doubled; empty when no columns are.
std::vector<uint8_t> FindDoubled(const Samples& columns, const std::vector<double>& coverage) {
    const Side& low = columns.low;
    const Side& high = columns.high;
    const auto isDoubled = [&](size_t i) {
        const bool isLeftFar = low.weight[i] == kFarWeight && high.weight[i] == kNearWeight;
        const bool isRightFar = low.weight[i] == kNearWeight && high.weight[i] == kFarWeight;
        return (isLeftFar || isRightFar) && high.index[i] == low.index[i] + 1 &&
               low.inside[i] == low.weight[i] && high.inside[i] == high.weight[i] &&
               coverage[i] == 1;
    };
    const auto follows = [&](size_t i) {
        const int32_t step = low.weight[i - 1] == kFarWeight ? 1 : 0;
        return low.weight[i] == high.weight[i - 1] && low.index[i] == low.index[i - 1] + step;
    };
    std::vector<uint8_t> doubled(coverage.size());
    size_t length = 0;
    bool any = false;
    for (size_t i = 0; i < coverage.size(); ++i) {
        length = !isDoubled(i) ? 0 : length > 0 && follows(i) ? length + 1 : 1;
        if (length >= kDoubledColumns) {
            doubled[i + 1 - kDoubledColumns] = 1;
            any = true;
        }
    }
    return any ? doubled : std::vector<uint8_t>();
}

/// BilinearRow::isPlain.
bool ArePlain(const BilinearSourceRow& upper, const BilinearSourceRow& lower) {
    return upper.inside == upper.weight && lower.inside == lower.weight &&
           upper.inside + lower.inside > kFullInside;
}

}  // namespace

void BilinearRowScalar(const BilinearRow& row, size_t begin, size_t end) {
    for (size_t i = begin; i < end; ++i) {
        WeightedSum sum;
        double inside = 0;
        for (const BilinearSourceRow& from : {row.upper, row.lower}) {
            for (const BilinearColumns& columns : {row.left, row.right}) {
                sum.Add(from.pixels[columns.index[i]], columns.weight[i] * from.weight);
                inside += columns.inside[i] * from.inside;
            }
        }
        if (sum.a > 0 && (!row.needsInside || inside > 0)) {
            double alpha = row.coverage[i] * row.rowCoverage * sum.a * kFullScale;
            if (row.fade && inside < kFullInside) {
                alpha = alpha * inside / kFullInside;
            }
            row.dst[i] = sum.Mean(alpha);
        }
    }
}

void ResampleBilinear(int32_t boundary, bool fadeAlpha, const ResampleTarget& destination,
                      const ResampleSource& source, std::optional<PixelRect> clip) {
    static constexpr KernelForms<BilinearRowForm> kForms{BilinearRowScalar,
                                                         IMGBASIC_X86_FORM(BilinearRowAvx2),
                                                         IMGBASIC_X86_FORM(BilinearRowAvx512)};
    const auto resampling = PrepareResampling(destination, source, clip);
    if (!resampling || (LooksAtClip(boundary) && !resampling->columns.HasClip())) {
        return;
    }
    const Samples columns = FindSamples(resampling->columns, boundary);
    const std::vector<size_t> ends = FindEndsOfAscent(columns);
    const std::vector<uint8_t> strides = FindPairStrides(columns, source.width);
    const std::vector<uint8_t> doubled = FindDoubled(columns, resampling->columns.coverage);
    const Samples rows = FindSamples(resampling->rows, boundary);
    const size_t columnCount = resampling->columns.Count();
    const size_t rowCount = resampling->rows.Count();
    const bool needsInside = boundary != BoundaryClip;
    for (size_t j = 0; j < rowCount; ++j) {
        const BilinearSourceRow upper = rows.low.Row(j, source);
        const BilinearSourceRow lower = rows.high.Row(j, source);
        const bool isPlain = ArePlain(upper, lower);
        const BilinearRow row{resampling->TargetRow(destination, j),
                              upper,
                              lower,
                              columns.low.Columns(),
                              columns.high.Columns(),
                              strides.data(),
                              isPlain && !doubled.empty() ? doubled.data() : nullptr,
                              resampling->columns.coverage.data(),
                              resampling->rows.coverage[j],
                              source.width,
                              isPlain,
                              needsInside,
                              needsInside && fadeAlpha,
                              StoreFor(columnCount * rowCount)};
        size_t begin = 0;
        for (const size_t end : ends) {
            kForms.Active()(row, begin, end);
            begin = end;
        }
    }
}

}  // namespace imgbasic
