#include <algorithm>
#include <cmath>

#include "lib/image/resample/average_forms.h"
#include "lib/image/resample/prepare.h"
#include "lib/image/resample/stride.h"
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
    std::vector<double> opaqueShares;
    std::vector<AverageColumnRun> runs;
};

/// The stride of the run from `i` on, see AverageColumnRun; `taps` is the most of its columns.
int32_t FindRunStride(const AverageColumns& columns, size_t i, int32_t taps, int32_t sourceWidth) {
    const int32_t stride = taps == 0 ? 0 : FindStride(columns.indices, i, taps - 1, sourceWidth);
    if (stride == 0 || taps < stride) {
        return 0;
    }
    // The other taps follow the first where none of them is cut off at an end of the row.
    const size_t last = static_cast<size_t>(taps - 1) * columns.count + i;
    return columns.indices[last] == columns.indices[i] + taps - 1 ? stride : 0;
}

AverageColumns FindColumns(const ResampleAxis& axis) {
    AverageColumns columns;
    columns.count = axis.Count();
    columns.taps = MostTaps(axis);
    const size_t entries = columns.taps * columns.count;
    columns.indices.resize(entries);
    columns.areaWeights.resize(entries);
    columns.pixelWeights.resize(entries);
    columns.opaqueShares.resize(entries);
    columns.runs.resize(columns.count);
    for (size_t i = 0; i < axis.Count(); ++i) {
        const Span span = FindSpan(axis, i);
        for (size_t n = i - std::min(i, kStrideColumns - 1); n <= i; ++n) {
            columns.runs[n].taps =
                std::max(columns.runs[n].taps, static_cast<int32_t>(span.Count()));
        }
        for (int64_t k = 0; k < static_cast<int64_t>(columns.taps); ++k) {
            const int64_t index = span.first + k;
            const size_t entry = static_cast<size_t>(k) * columns.count + i;
            // Unused entries keep the columns ascending, as far as there are any.
            columns.indices[entry] =
                static_cast<int32_t>(std::clamp<int64_t>(index, 0, axis.sourceLimit - 1));
            if (k < span.Count()) {
                const double weight = span.Weight(index);
                columns.areaWeights[entry] = weight;
                columns.pixelWeights[entry] = axis.IsInClip(index) ? weight : 0;
                columns.opaqueShares[entry] =
                    kFullScale * columns.pixelWeights[entry] / kFullScale * kQuotientRaise;
            }
        }
    }
    for (size_t i = 0; i < columns.count; ++i) {
        columns.runs[i].stride = FindRunStride(columns, i, columns.runs[i].taps, axis.sourceLimit);
    }
    return columns;
}

/// What the forms keep for rows of the same weights, see AverageRow.
struct OpaqueMeans {
    std::vector<double> scales;
    std::vector<double> alphas;
    std::vector<AverageTap> weights;
    double coverage = 0;
    bool areUsed = false;

    OpaqueMeans(size_t columns, size_t mostTaps) : scales(columns), alphas(columns) {
        weights.reserve(mostTaps);
    }

    bool AreOf(const std::vector<AverageTap>& taps, double rowCoverage) const {
        const auto isSame = [](const AverageTap& a, const AverageTap& b) {
            return a.weight == b.weight && (a.pixels == nullptr) == (b.pixels == nullptr);
        };
        return rowCoverage == coverage && std::ranges::equal(taps, weights, isSame);
    }
};

/// Those of the last rows that had weights of their own. To 50 % all rows have the same, to 40 %
/// every second one, to 75 % every third.
class LastOpaqueMeans {
  public:
    LastOpaqueMeans(size_t columns, size_t mostTaps) {
        last_.reserve(kRows);
        while (last_.size() < kRows) {
            last_.emplace_back(columns, mostTaps);
        }
    }

    /// What is kept for rows of these weights; null when this is the first, of which nothing is
    /// kept yet.
    OpaqueMeans* Find(const std::vector<AverageTap>& taps, double coverage) {
        for (OpaqueMeans& means : last_) {
            if (means.AreOf(taps, coverage)) {
                means.areUsed = true;
                return &means;
            }
        }
        OpaqueMeans& oldest = last_[next_++ % kRows];
        if (oldest.areUsed) {
            std::ranges::fill(oldest.scales, 0);
            oldest.areUsed = false;
        }
        oldest.weights = taps;
        oldest.coverage = coverage;
        return nullptr;
    }

  private:
    static constexpr size_t kRows = 4;

    std::vector<OpaqueMeans> last_;
    size_t next_ = 0;
};

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
    LastOpaqueMeans lastMeans(columns.count, MostTaps(rows));
    std::vector<AverageTap> taps;
    taps.reserve(MostTaps(rows));
    for (size_t j = 0; j < rows.Count(); ++j) {
        const Span span = FindSpan(rows, j);
        taps.clear();
        for (int64_t index = span.first; index < span.last; ++index) {
            taps.push_back(
                {rows.IsInClip(index) ? SourceRow(source, index) : nullptr, span.Weight(index)});
        }
        OpaqueMeans* const means = lastMeans.Find(taps, rows.coverage[j]);
        const bool isWhole = std::ranges::all_of(
            taps, [](const AverageTap& tap) { return tap.pixels != nullptr && tap.weight == 1; });
        const AverageRow row{resampling->TargetRow(destination, j),
                             taps.data(),
                             taps.size(),
                             columns.count,
                             columns.taps,
                             columns.indices.data(),
                             columns.areaWeights.data(),
                             columns.pixelWeights.data(),
                             columns.opaqueShares.data(),
                             columns.runs.data(),
                             means != nullptr ? means->scales.data() : nullptr,
                             means != nullptr ? means->alphas.data() : nullptr,
                             isWhole,
                             resampling->columns.coverage.data(),
                             rows.coverage[j],
                             source.width,
                             StoreFor(columns.count * rows.Count())};
        kForms.Active()(row, 0, columns.count);
    }
}

}  // namespace imgbasic
