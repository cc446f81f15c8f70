#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// One destination row to fill: dst[i] = source[index[i]], except where that pixel is transparent.
struct NearestRow {
    RGBA16* dst;
    const RGBA16* source;
    const int32_t* index;
    int32_t sourceWidth;
    Store store;
};

/// Fills the columns [begin, end) of a row, all of which the rectangle covers in full.
using NearestRowForm = void(const NearestRow& row, size_t begin, size_t end);

NearestRowForm NearestRowScalar;
NearestRowForm NearestRowAvx2;
NearestRowForm NearestRowAvx512;

}  // namespace imgbasic
