#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// One of the two source columns around each destination column's centre. A column without a
/// pixel has some index of the row and the weight 0, which adds nothing.
struct BilinearColumns {
    const int32_t* index;
    const double* weight;
    const double* inside;  ///< the weight as far as it counts as inside the clip rectangle
};

/// One of the two source rows around a destination row's centre; likewise.
struct BilinearSourceRow {
    const RGBA16* pixels;
    double weight;
    double inside;
};

/// One destination row to interpolate.
///
/// Where the stride of the column i is 2 or 3, the left pixels of kStrideColumns from there on are
/// so far apart, the right ones follow them, and as many times their number from the first on are
/// in the row; what counts of either counts as inside.
///
/// Doubled columns are those of an enlargement to twice the width. Their two pixels are neighbours;
/// the one of kFarWeight is in turn the left and the right, and two columns have the same one of
/// kNearWeight. All of them are covered in full, and none fades.
struct BilinearRow {
    RGBA16* dst;
    BilinearSourceRow upper;
    BilinearSourceRow lower;
    BilinearColumns left;
    BilinearColumns right;
    const uint8_t* strides;
    const uint8_t* doubled;  ///< 1: kDoubledColumns from here on are doubled; null: none are
    const double* coverage;
    double rowCoverage;
    int32_t sourceWidth;
    bool isPlain;      ///< columns of which both pixels are inside are drawn without fading
    bool needsInside;  ///< pixels without any weight inside are left alone
    bool fade;         ///< alpha fades where little of the weight is inside
    Store store;
};

/// Interpolates the columns [begin, end) of a row. The indices of either side ascend.
using BilinearRowForm = void(const BilinearRow& row, size_t begin, size_t end);

BilinearRowForm BilinearRowScalar;
BilinearRowForm BilinearRowAvx2;
BilinearRowForm BilinearRowAvx512;

constexpr double kFarWeight = 0.25;
constexpr double kNearWeight = 0.75;
constexpr size_t kDoubledColumns = 16;
constexpr double kFullInside = 0.85;  ///< the inside weight from which on nothing fades

}  // namespace imgbasic
