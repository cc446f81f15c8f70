#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/rgba16.h"
#include "lib/image/row_kernel.h"

namespace imgbasic {

/// dst[i] = row[columns[i]] for `count` columns that ascend, leaving `dst` alone where that pixel
/// is transparent. `row` has `width` pixels.
using CopyColumnsForm = void(RGBA16* dst, const RGBA16* row, int32_t width, const int32_t* columns,
                             size_t count, Store store);

CopyColumnsForm CopyColumnsScalar;

}  // namespace imgbasic
