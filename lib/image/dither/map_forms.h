#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/dither/closest_entry_lookup.h"
#include "lib/image/dither/region_lookup.h"
#include "lib/image/pixels/rgba16.h"

// One row of each dither kind; `colors` (visible ones) and `indices` have `width` elements. `ahead`
// is what the caller will read next, as many host pixels or null: a form that waits for nothing
// else from memory may have it fetched meanwhile.
namespace imgbasic {

/// Every pixel gets the entry closest to its colour.
using MapPlainForm = void(ClosestEntryLookup& lookup, const uint32_t* colors, uint8_t* indices,
                          size_t width, const RGBA16* ahead);
MapPlainForm MapPlainRowScalar;
MapPlainForm MapPlainRowAvx2;

/// What ordered dithering adds to a channel, from -128 to 127, by its column % 4 and by the bits
/// of the channel's distance from the closest entry (0 to 8; the rest of 16 is not used).
struct alignas(16) OrderedOffsets {
    int8_t offsets[4][16];
};

/// Ordered dithering that goes only as far as the closest entry is from the pixel, channel by
/// channel, with 4 x 4 threshold matrices after Bayer (1973).
using MapOrderedForm = void(ClosestEntryLookup& lookup, const uint32_t* colors, uint8_t* indices,
                            size_t width, const RGBA16* ahead, const OrderedOffsets& row);
MapOrderedForm MapOrderedRowScalar;
MapOrderedForm MapOrderedRowAvx2;

/// The offsets of row `y`.
const OrderedOffsets& OrderedOffsetsOf(int32_t y);

/// What is left over of a pixel's channels, -255 to 255 each.
struct ColorError {
    int16_t channels[4];
};

/// The errors of the row above and of this one, which is filled. In front of both is a zero, behind
/// are kErrorsBehind elements.
struct ErrorRows {
    const ColorError* above;
    ColorError* current;
};
constexpr size_t kErrorsBehind = 8;

struct DiffusionLookups {
    ClosestEntryLookup& closest;
    RegionLookup& regions;
};

/// Error diffusion after Floyd and Steinberg (1976). `step`: 1 from left to right, -1 from right
/// to left. The error spread is that of the pixel's own colour, or when `accumulate` is set that of
/// the colour after what was spread to it.
using MapDiffusedForm = void(const DiffusionLookups& lookups, const uint32_t* colors,
                             uint8_t* indices, size_t width, const RGBA16* ahead, ptrdiff_t step,
                             ErrorRows errors, bool accumulate);
MapDiffusedForm MapDiffusedRowScalar;
MapDiffusedForm MapDiffusedRowAvx2;

}  // namespace imgbasic
