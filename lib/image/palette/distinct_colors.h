#pragma once

#include <cstddef>

#include "lib/base/kv_array.h"
#include "lib/image/palette/counted_colors.h"
#include "lib/image/palette/kv_color_palette.h"

namespace imgbasic {

/// Fills the empty `entries` with the image's own colours, in order of first appearance, and
/// their pixel counts. False as soon as there are more than `limit` (at most 256).
bool CollectDistinctColors(const CountedColors& image, size_t limit,
                           KVArray<KVColorPalette>& entries);

}  // namespace imgbasic
