#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/dither/closest_entry_lookup.h"

// One row of each dither kind; `pixels` and `indices` have `width` elements.
namespace imgbasic {

using MapPlainForm = void(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                          size_t width);
MapPlainForm MapPlainRowScalar;
MapPlainForm MapPlainRowAvx2;

/// What ordered dithering adds to a channel, from -128 to 127, by its column % 4 and by the bits
/// of the channel's distance from the closest entry (0 to 8; the rest of 16 is not used).
struct alignas(16) OrderedOffsets {
    int8_t offsets[4][16];
};

using MapOrderedForm = void(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                            size_t width, const OrderedOffsets& row);
MapOrderedForm MapOrderedRowScalar;
MapOrderedForm MapOrderedRowAvx2;

/// What is left over of a pixel's channels, -255 to 255 each.
struct ColorError {
    int16_t channels[4];
};

/// The errors of the row above and of this one, which is filled; both with a zero in front and
/// behind.
struct ErrorRows {
    const ColorError* above;
    ColorError* current;
};

/// `step`: 1 from left to right, -1 from right to left.
using MapDiffusedForm = void(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                             size_t width, ptrdiff_t step, ErrorRows errors, bool accumulate);
MapDiffusedForm MapDiffusedRowScalar;
MapDiffusedForm MapDiffusedRowAvx2;

}  // namespace imgbasic
