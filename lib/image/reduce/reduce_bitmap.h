#pragma once

#include <cstdint>
#include <memory>

#include "lib/image/bitmap/kv_bitmap.h"

namespace imgbasic {

/// Maps a bitmap to a palette of its own: MapToIndexed after QuantizePalette or, when `graduate`
/// is set, after QuantizeGraduated with the count that `countSpec` asks for. Null as those fail.
std::unique_ptr<KVBitmap> ReduceBitmap(const KVBitmap* bitmap, int32_t countSpec,
                                       int32_t ditherKind, bool graduate);

}  // namespace imgbasic
