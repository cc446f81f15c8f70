#pragma once

#include "lib/base/kv_array.h"
#include "lib/image/palette/color_histogram.h"
#include "lib/image/palette/kv_color_palette.h"

namespace imgbasic {

/// Fills the empty `entries` with at most kMaxBoxes distinct colours: one for each box of coarse
/// colours, its mean, or as long as there is room two, the means of its halves. `shift` is that
/// of the coarse colours `coarse`, which say what belongs to which box.
void AddBoxMeans(const std::vector<ColorHistogram::Part>& parts,
                 const std::vector<CoarseColor>& coarse, int shift, const ColorBoxes& boxes,
                 KVArray<KVColorPalette>& entries);

}  // namespace imgbasic
