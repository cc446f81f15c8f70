#pragma once

#include <memory>

#include "lib/image/bitmap/kv_bitmap.h"
#include "lib/image/palette/reduce_palette.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// "col_reduce": at most ReduceColor colours, chosen from the image, with optional dithering.
/// Options: ReduceColor, DitherType, SharePalette, GraduateReduce, TargetType. With SharePalette
/// every visit of the topmost item with a rectangle chooses the palette anew from its pixels, also
/// when that item is not the target, and all mapping until Dispose uses it.
class ReduceColorImageProcess final : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    bool Execute(const ExecuteArgs& args) override;
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;

    int32_t ReduceColor = 16;     ///< colours of the result, 1 to 256
    int32_t DitherType = 3;       ///< 0 none, 1 ordered, 2 and 3 error diffusion
    bool SharePalette = false;    ///< the topmost layer's palette serves every layer
    bool GraduateReduce = false;  ///< halve the colours step by step from 256

  private:
    int32_t ColorLimit() const;
    bool BuildSharedPalette(const KVBitmap& bitmap);
    bool ExecuteMerged(const ExecuteArgs& args) const;
    bool MapAndWrite(RGBA16* dst, PixelRect rect, const KVBitmap& bitmap) const;

    std::unique_ptr<ReducePalette> sharedPalette_;
};

}  // namespace imgbasic
