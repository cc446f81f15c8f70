#pragma once

#include <cstddef>

#include "lib/base/kv_array.h"
#include "lib/image/palette/kv_color_palette.h"

namespace imgbasic {

/// Keeps the `limit` entries that are farthest from any other entry, and of equally far ones
/// those farther from mid-grey; they stay in their order. An entry counts as a neighbour whether
/// it is kept or not, so that both of a close pair may go.
void ThinPalette(KVArray<KVColorPalette>& entries, size_t limit);

}  // namespace imgbasic
