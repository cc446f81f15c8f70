#pragma once

#include <cstdint>
#include <memory>

#include "lib/image/kv_bitmap.h"
#include "lib/image/reduce_palette.h"

namespace imgbasic {

/// Chooses a palette of at most `target` colours (below 1: one) by halving: 256 colours first,
/// then half as many for the bitmap as those show it, and so on. False as QuantizePalette, and
/// for a bitmap with an identifier.
bool QuantizeGraduated(ReducePalette& palette, const KVBitmap* bitmap, int32_t target);

/// Maps a bitmap to a palette of its own: MapToIndexed after QuantizePalette or, when `graduate`
/// is set, after QuantizeGraduated with the count that `countSpec` asks for. Null as those fail.
std::unique_ptr<KVBitmap> ReduceBitmap(const KVBitmap* bitmap, int32_t countSpec,
                                       int32_t ditherKind, bool graduate);

}  // namespace imgbasic
