#include "plugin/imgbasic/col_reduce.h"

#include <algorithm>

#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/quantize_graduated.h"
#include "lib/image/reduce/reduce_bitmap.h"
#include "lib/image/reduce/work_bitmap.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {

int ReduceColorImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return RunOptionsDialog(*this) ? 1 : -1;
}

bool ReduceColorImageProcess::BatchDispose() {
    return true;
}

int ReduceColorImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (reference != nullptr) {
        if (const auto* earlier = dynamic_cast<const ReduceColorImageProcess*>(reference)) {
            ReduceColor = earlier->ReduceColor;
            DitherType = earlier->DitherType;
            SharePalette = earlier->SharePalette;
            GraduateReduce = earlier->GraduateReduce;
        }
        return ApplyNow();
    }
    return RunOptionsDialog(*this) ? 1 : -1;
}

int ReduceColorImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                                   const RGBA16* merged, uint64_t /*unused1*/, uint64_t /*unused2*/,
                                   uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool ReduceColorImageProcess::Execute(const ExecuteArgs& args) {
    const TargetAction action = SelectTarget(*this, args);
    if (action == TargetAction::Refuse) {
        return false;
    }
    if (action == TargetAction::PassRect) {
        PassRect(args);
    }
    const bool map = action == TargetAction::ProcessLayer;
    const bool build = SharePalette && args.layer == 0 && args.subLayer < 0;
    PixelRect rect;
    if ((map || build) && args.inRect != nullptr && args.src != nullptr) {
        rect = ClippedTo(*this, *args.inRect);
    }
    std::unique_ptr<KVBitmap> bitmap;
    if (!rect.IsEmpty()) {
        bitmap = MakeWorkBitmap(args.src, width, rect);
        if (bitmap == nullptr || (build && !BuildSharedPalette(*bitmap))) {
            return false;
        }
    }
    if (map) {
        PassRect(args);
        return bitmap == nullptr || MapAndWrite(args.dst, rect, *bitmap);
    }
    bitmap.reset();
    return action != TargetAction::ProcessMerged || ExecuteMerged(args);
}

int32_t ReduceColorImageProcess::ColorLimit() const {
    return std::clamp(ReduceColor, 1, 256);
}

bool ReduceColorImageProcess::BuildSharedPalette(const KVBitmap& bitmap) {
    sharedPalette_.reset();
    auto palette = std::make_unique<ReducePalette>();
    if (!(GraduateReduce ? QuantizeGraduated(*palette, &bitmap, ColorLimit())
                         : QuantizePalette(*palette, &bitmap, -ColorLimit()))) {
        return false;
    }
    sharedPalette_ = std::move(palette);
    return true;
}

bool ReduceColorImageProcess::ExecuteMerged(const ExecuteArgs& args) const {
    if (mergedImage == nullptr) {
        return false;
    }
    StoreThrough(args.resultKind, 1);
    const RECT image{0, 0, width, height};
    if (args.outRect != nullptr) {
        *args.outRect = image;
    }
    const PixelRect rect = ClippedTo(*this, image);
    if (rect.IsEmpty()) {
        return true;
    }
    const auto bitmap = MakeWorkBitmap(mergedImage, width, rect);
    return bitmap != nullptr && MapAndWrite(args.dst, rect, *bitmap);
}

bool ReduceColorImageProcess::MapAndWrite(RGBA16* dst, PixelRect rect,
                                          const KVBitmap& bitmap) const {
    const auto indexed = SharePalette && sharedPalette_ != nullptr
                             ? MapToIndexed(*sharedPalette_, &bitmap, DitherType)
                             : ReduceBitmap(&bitmap, -ColorLimit(), DitherType, GraduateReduce);
    if (indexed == nullptr) {
        return false;
    }
    if (dst != nullptr) {
        WriteIndexed(dst, width, rect, *indexed);
    }
    return true;
}

bool ReduceColorImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                           double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool ReduceColorImageProcess::Dispose() {
    sharedPalette_.reset();
    return true;
}

}  // namespace imgbasic
