#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// One source row under a destination row.
struct AverageTap {
    const RGBA16* pixels;  ///< null when the row counts in the area only
    double weight;
};

/// One destination row to average. Every column takes `taps` source columns of every source row,
/// kept tap by tap: entry k * columns + i belongs to tap k of column i. A column with fewer taps
/// has weights 0 in the rest, which add nothing; so has, in `pixelWeights`, a tap whose pixel does
/// not take part. All indices are inside the row.
struct AverageRow {
    RGBA16* dst;
    const AverageTap* rows;
    size_t rowCount;
    size_t columns;
    size_t taps;
    const int32_t* indices;
    const double* areaWeights;
    const double* pixelWeights;
    const double* coverage;
    double rowCoverage;
    int32_t sourceWidth;
    Store store;
};

/// Averages the columns [begin, end) of a row.
using AverageRowForm = void(const AverageRow& row, size_t begin, size_t end);

AverageRowForm AverageRowScalar;
AverageRowForm AverageRowAvx2;
AverageRowForm AverageRowAvx512;

constexpr double kSmallestArea = 1e-6;  ///< with a smaller weight sum a pixel has no result

}  // namespace imgbasic
