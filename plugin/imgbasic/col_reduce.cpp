#include "plugin/imgbasic/col_reduce.h"

#include <algorithm>

#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/quantize_graduated.h"
#include "lib/image/reduce/reduce_bitmap.h"
#include "lib/image/reduce/work_bitmap.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {

bool ReduceColorImageProcess::Execute(const ExecuteArgs& args) {
    const TargetAction action = SelectTarget(*this, args);
    const bool build = SharePalette && args.layer == 0 && args.subLayer < 0;
    if (build && action != TargetAction::Refuse && !BuildSharedPalette(args)) {
        return false;
    }
    return ProcessTarget(*this, args, action, MergedResult::Announced,
                         [&](const RGBA16* src, PixelRect rect) {
                             const auto bitmap = MakeWorkBitmap(src, width, rect);
                             return bitmap != nullptr && MapAndWrite(args.dst, rect, *bitmap);
                         });
}

int32_t ReduceColorImageProcess::ColorLimit() const {
    return std::clamp(ReduceColor, 1, 256);
}

bool ReduceColorImageProcess::BuildSharedPalette(const ExecuteArgs& args) {
    if (args.inRect == nullptr || args.src == nullptr) {
        return true;
    }
    const PixelRect rect = ClippedTo(*this, *args.inRect);
    if (rect.IsEmpty()) {
        return true;
    }
    const auto bitmap = MakeWorkBitmap(args.src, width, rect);
    if (bitmap == nullptr) {
        return false;
    }
    sharedPalette_.reset();
    auto palette = std::make_unique<ReducePalette>();
    if (!(GraduateReduce ? QuantizeGraduated(*palette, bitmap.get(), ColorLimit())
                         : QuantizePalette(*palette, bitmap.get(), -ColorLimit()))) {
        return false;
    }
    sharedPalette_ = std::move(palette);
    return true;
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

bool ReduceColorImageProcess::Dispose() {
    sharedPalette_.reset();
    return true;
}

const FilterRow& ReduceColorImageProcess::Row() const {
    return kRow<ReduceColorImageProcess>;
}

}  // namespace imgbasic
