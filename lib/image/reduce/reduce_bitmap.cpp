#include "lib/image/reduce/reduce_bitmap.h"

#include <algorithm>

#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/quantize_graduated.h"

namespace imgbasic {

std::unique_ptr<KVBitmap> ReduceBitmap(const KVBitmap* bitmap, int32_t countSpec,
                                       int32_t ditherKind, bool graduate) {
    ReducePalette palette;
    const bool chosen = graduate ? QuantizeGraduated(palette, bitmap,
                                                     countSpec < 0 ? -std::max(countSpec, -256)
                                                                   : 1 << std::min(countSpec, 8))
                                 : QuantizePalette(palette, bitmap, countSpec);
    return chosen ? MapToIndexed(palette, bitmap, ditherKind) : nullptr;
}

}  // namespace imgbasic
