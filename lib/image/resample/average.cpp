#include <cmath>

#include "lib/image/resample/average_forms.h"
#include "lib/image/resample/prepare.h"
#include "lib/image/resample/weighted_sum.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

/// How far outside the source an area is still counted, in pixels. A destination rectangle
/// narrower than the one pixel that it lies in can span any number of source columns; the limit
/// bounds the time and the memory that it takes.
constexpr double kReach = 16384;

/// The source columns (or rows) under one destination column.
struct Span {
    double begin;
    double end;
    int64_t first;
    int64_t last;  ///< exclusive

    int64_t Count() const { return std::max<int64_t>(last - first, 0); }
    double Weight(int64_t index) const { return Overlap(static_cast<double>(index), begin, end); }
};

Span FindSpan(const ResampleAxis& axis, size_t i) {
    const double begin = axis.SourcePosition(axis.sum[i]);
    const double end = axis.SourcePosition(axis.sum[i + 1]);
    const double limit = axis.sourceLimit + kReach;
    return {begin, end, ToIndex(std::clamp(std::floor(begin), -kReach, limit)),
            ToIndex(std::clamp(std::ceil(end), -kReach, limit))};
}

/// The greatest number of source columns under any destination column.
size_t MostTaps(const ResampleAxis& axis) {
    int64_t most = 0;
    for (size_t i = 0; i < axis.Count(); ++i) {
        most = std::max(most, FindSpan(axis, i).Count());
    }
    return static_cast<size_t>(most);
}

/// The tables of AverageRow.
struct AverageColumns {
    size_t count = 0;
    size_t taps = 0;
    std::vector<int32_t> indices;
    std::vector<double> areaWeights;
    std::vector<double> pixelWeights;
};

AverageColumns FindColumns(const ResampleAxis& axis) {
    AverageColumns columns;
    columns.count = axis.Count();
    columns.taps = MostTaps(axis);
    const size_t entries = columns.taps * columns.count;
    columns.indices.resize(entries);
    columns.areaWeights.resize(entries);
    columns.pixelWeights.resize(entries);
    for (size_t i = 0; i < axis.Count(); ++i) {
        const Span span = FindSpan(axis, i);
        for (int64_t k = 0; k < static_cast<int64_t>(columns.taps); ++k) {
            const int64_t index = span.first + k;
            const size_t entry = static_cast<size_t>(k) * columns.count + i;
            // Unused entries keep the columns ascending, as far as there are any.
            columns.indices[entry] =
                static_cast<int32_t>(std::clamp<int64_t>(index, 0, axis.sourceLimit - 1));
            if (k < span.Count()) {
                columns.areaWeights[entry] = span.Weight(index);
                columns.pixelWeights[entry] = axis.IsInClip(index) ? span.Weight(index) : 0;
            }
        }
    }
    return columns;
}

}  // namespace

void AverageRowScalar(const AverageRow& row, size_t begin, size_t end) {
    for (size_t i = begin; i < end; ++i) {
        WeightedSum sum;
        double area = 0;
        for (size_t j = 0; j < row.rowCount; ++j) {
            const AverageTap& tap = row.rows[j];
            for (size_t k = 0; k < row.taps; ++k) {
                const size_t entry = k * row.columns + i;
                area += row.areaWeights[entry] * tap.weight;
                if (tap.pixels != nullptr) {
                    sum.Add(tap.pixels[row.indices[entry]], row.pixelWeights[entry] * tap.weight);
                }
            }
        }
        if (sum.a > 0 && area > kSmallestArea) {
            row.dst[i] = sum.Mean(row.coverage[i] * row.rowCoverage * sum.a * kFullScale / area);
        }
    }
}

void ResampleAverage(const ResampleTarget& destination, const ResampleSource& source,
                     std::optional<PixelRect> clip) {
    static constexpr KernelForms<AverageRowForm> kForms{
        AverageRowScalar, IMGBASIC_X86_FORM(AverageRowAvx2), IMGBASIC_X86_FORM(AverageRowAvx512)};
    const auto resampling = PrepareResampling(destination, source, clip);
    if (!resampling) {
        return;
    }
    const ResampleAxis& rows = resampling->rows;
    const AverageColumns columns = FindColumns(resampling->columns);
    // All memory is there before the first pixel is drawn: running out of it changes nothing.
    std::vector<AverageTap> taps;
    taps.reserve(MostTaps(rows));
    for (size_t j = 0; j < rows.Count(); ++j) {
        const Span span = FindSpan(rows, j);
        taps.clear();
        for (int64_t index = span.first; index < span.last; ++index) {
            taps.push_back(
                {rows.IsInClip(index) ? SourceRow(source, index) : nullptr, span.Weight(index)});
        }
        const AverageRow row{resampling->TargetRow(destination, j),
                             taps.data(),
                             taps.size(),
                             columns.count,
                             columns.taps,
                             columns.indices.data(),
                             columns.areaWeights.data(),
                             columns.pixelWeights.data(),
                             resampling->columns.coverage.data(),
                             rows.coverage[j],
                             source.width,
                             StoreFor(columns.count * rows.Count())};
        kForms.Active()(row, 0, columns.count);
    }
}

}  // namespace imgbasic
