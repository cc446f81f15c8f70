#pragma once

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/dither/closest_entry_lookup.h"

// The dither kinds of MapToIndexed. Both bitmaps have the same size, and have pixels.
namespace imgbasic {

/// Every pixel gets the entry closest to its colour.
void MapPlain(ClosestEntryLookup& lookup, const KVBitmap& source, KVBitmap& indexed);

/// Ordered dithering that goes only as far as the closest entry is from the pixel, channel by
/// channel, with 4 x 4 threshold matrices after Bayer (1973).
void MapOrdered(ClosestEntryLookup& lookup, const KVBitmap& source, KVBitmap& indexed);

/// Error diffusion after Floyd and Steinberg (1976), rows in alternating directions. The error
/// spread is that of the pixel's own colour, or when `accumulate` is set that of the colour after
/// what was spread to it. False when memory runs out.
bool MapDiffused(ClosestEntryLookup& lookup, const KVBitmap& source, KVBitmap& indexed,
                 bool accumulate);

}  // namespace imgbasic
