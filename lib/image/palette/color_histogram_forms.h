#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/palette/color_word.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

// What ColorHistogram counts in one word for each cell, so that a pixel is one addition: pixels,
// and the sums of their rests, what the channels are above the least level of the cell.
//
//      63    62 ... 54   53 ... 43   42 ... 32   31 ... 23   22 ... 12   11 ... 1   0
//       -      count       alpha        red          -         green       blue     seen

constexpr int kTallyCellBits = 5;
constexpr uint32_t kRestMask = (1U << (8 - kTallyCellBits)) - 1;
constexpr int kTallyShift[kColorChannels] = {1, 12, 32, 43};
constexpr int kTallyBits = 11;
constexpr int kCountShift = 54;
constexpr uint64_t kOnePixel = uint64_t{1} << kCountShift;
constexpr uint64_t kSeen = 1;
/// A tally that is as full as it may be.
constexpr uint64_t kFullTally = uint64_t{1} << 62;
static_assert((kFullTally >> kCountShift) * kRestMask < (1U << kTallyBits), "sums of rests");

/// The cells of `count` visible colours, and what each adds to its cell's tally. `ahead`: as in
/// ColorHistogram::Add.
using TallyForm = void(const uint32_t* colors, size_t count, const RGBA16* ahead, uint32_t* cells,
                       uint64_t* tallies);
TallyForm TallyScalar;
TallyForm TallyAvx2;

}  // namespace imgbasic
