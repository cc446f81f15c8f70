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

/// What eight neighbouring columns, as many as any vector has, share; kept for the first of them.
struct AverageColumnRun {
    int32_t taps;    ///< the most that any of them has, or of as many as there are up to the end
    int32_t stride;  ///< 2 or 3: how far apart their pixels lie in every tap; 0: irregularly
};

/// One destination row to average. Every column takes `taps` source columns of every source row,
/// kept tap by tap: entry k * columns + i belongs to tap k of column i. A column with fewer taps
/// has weights 0 in the rest, which add nothing; so has, in `pixelWeights`, a tap whose pixel does
/// not take part. All indices are inside the row and ascend from column to column.
///
/// Where the stride of the run at i is s, its pixels are indices[i] + k + s * (0, 1, ... 7), and
/// the s * 8 pixels from the first of them on are inside the row.
///
/// What only the weights decide is the same in all rows of the same weights: a form may keep for
/// them, column by column, what the colour sums of opaque pixels are scaled by (0: nothing is kept)
/// and the alpha of their mean.
struct AverageRow {
    RGBA16* dst;
    const AverageTap* rows;
    size_t rowCount;
    size_t columns;
    size_t taps;
    const int32_t* indices;
    const double* areaWeights;
    const double* pixelWeights;
    const double* opaqueShares;  ///< what opaque pixels add to an alpha sum in a row of weight 1
    const AverageColumnRun* runs;
    double* opaqueScales;  ///< null in a row weighted otherwise than the last ones
    double* opaqueAlphas;
    bool isWhole;  ///< all source rows have pixels and the weight 1
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
