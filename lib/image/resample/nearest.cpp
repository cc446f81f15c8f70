#include <cmath>
#include <vector>

#include "lib/image/resample/nearest_forms.h"
#include "lib/image/resample/prepare.h"
#include "lib/image/resample/weighted_sum.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

/// Which source column each drawn destination column takes. Only the columns [begin, end) find
/// theirs in the clip rectangle; positions ascend, so that the others are at the ends.
struct NearestColumns {
    std::vector<int32_t> index;
    size_t begin = 0;
    size_t end = 0;
};

NearestColumns FindColumns(const ResampleAxis& axis) {
    NearestColumns columns;
    columns.index.resize(axis.Count());
    for (size_t i = 0; i < axis.Count(); ++i) {
        const int64_t index = ToIndex(std::floor(axis.SourcePosition(axis.sum[i])));
        if (axis.IsInClip(index)) {
            columns.index[i] = static_cast<int32_t>(index);
            columns.begin = columns.end == 0 ? i : columns.begin;
            columns.end = i + 1;
        }
    }
    return columns;
}

/// As NearestRowForm, for columns that the rectangle covers in part.
void FillCovered(const NearestRow& row, size_t begin, size_t end,
                 const std::vector<double>& coverage, double rowCoverage) {
    for (size_t i = begin; i < end; ++i) {
        const RGBA16 pixel = row.source[row.index[i]];
        if (pixel.a != 0) {
            row.dst[i] = {pixel.r, pixel.g, pixel.b,
                          ToChannel(coverage[i] * rowCoverage * pixel.a)};
        }
    }
}

void FillRow(const NearestRow& row, const NearestColumns& columns,
             const std::vector<double>& coverage, double rowCoverage) {
    static constexpr KernelForms<NearestRowForm> kForms{
        NearestRowScalar, IMGBASIC_X86_FORM(NearestRowAvx2), IMGBASIC_X86_FORM(NearestRowAvx512)};
    if (rowCoverage != 1) {
        FillCovered(row, columns.begin, columns.end, coverage, rowCoverage);
        return;
    }
    // Only the first and the last column can be covered in part.
    size_t begin = columns.begin;
    size_t end = columns.end;
    begin += begin < end && coverage[begin] != 1 ? 1 : 0;
    end -= begin < end && coverage[end - 1] != 1 ? 1 : 0;
    FillCovered(row, columns.begin, begin, coverage, rowCoverage);
    kForms.Active()(row, begin, end);
    FillCovered(row, end, columns.end, coverage, rowCoverage);
}

}  // namespace

void NearestRowScalar(const NearestRow& row, size_t begin, size_t end) {
    for (size_t i = begin; i < end; ++i) {
        const RGBA16 pixel = row.source[row.index[i]];
        if (pixel.a != 0) {
            row.dst[i] = pixel;
        }
    }
}

void ResampleNearest(const ResampleTarget& destination, const ResampleSource& source,
                     std::optional<PixelRect> clip) {
    const auto resampling = PrepareResampling(destination, source, clip);
    if (!resampling) {
        return;
    }
    const ResampleAxis& rows = resampling->rows;
    const NearestColumns columns = FindColumns(resampling->columns);
    const Store store = StoreFor(columns.index.size() * rows.Count());
    for (size_t j = 0; j < rows.Count(); ++j) {
        const int64_t index = ToIndex(std::floor(rows.SourcePosition(rows.sum[j])));
        if (rows.IsInClip(index)) {
            const NearestRow row{resampling->TargetRow(destination, j), SourceRow(source, index),
                                 columns.index.data(), source.width, store};
            FillRow(row, columns, resampling->columns.coverage, rows.coverage[j]);
        }
    }
}

}  // namespace imgbasic
