#include <cmath>
#include <span>
#include <vector>

#include "lib/image/resample_nearest_forms.h"
#include "lib/image/resample_prepare.h"
#include "lib/image/simd.h"
#include "lib/image/weighted_sum.h"

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

/// As CopyColumns, for destination pixels that are covered in part.
void CopyCovered(RGBA16* dst, const RGBA16* row, const int32_t* columns,
                 std::span<const double> coverage, double rowCoverage) {
    for (size_t i = 0; i < coverage.size(); ++i) {
        const RGBA16 pixel = row[columns[i]];
        if (pixel.a != 0) {
            dst[i] = {pixel.r, pixel.g, pixel.b, ToChannel(coverage[i] * rowCoverage * pixel.a)};
        }
    }
}

void DrawRow(RGBA16* dst, const RGBA16* row, int32_t width, const NearestColumns& columns,
             std::span<const double> coverage, double rowCoverage, Store store) {
    static constexpr KernelForms<CopyColumnsForm> kForms{CopyColumnsScalar};
    const int32_t* index = columns.index.data();
    const auto drawCovered = [&](size_t begin, size_t end) {
        CopyCovered(dst + begin, row, index + begin, coverage.subspan(begin, end - begin),
                    rowCoverage);
    };
    if (rowCoverage != 1) {
        drawCovered(columns.begin, columns.end);
        return;
    }
    // Only the first and the last column can be covered in part.
    size_t begin = columns.begin;
    size_t end = columns.end;
    begin += begin < end && coverage[begin] != 1 ? 1 : 0;
    end -= begin < end && coverage[end - 1] != 1 ? 1 : 0;
    drawCovered(columns.begin, begin);
    kForms.Active()(dst + begin, row, width, index + begin, end - begin, store);
    drawCovered(end, columns.end);
}

}  // namespace

void CopyColumnsScalar(RGBA16* dst, const RGBA16* row, int32_t /*width*/, const int32_t* columns,
                       size_t count, Store /*store*/) {
    for (size_t i = 0; i < count; ++i) {
        const RGBA16 pixel = row[columns[i]];
        if (pixel.a != 0) {
            dst[i] = pixel;
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
            DrawRow(resampling->TargetRow(destination, j), SourceRow(source, index), source.width,
                    columns, resampling->columns.coverage, rows.coverage[j], store);
        }
    }
}

}  // namespace imgbasic
