#include "plugin/imgbasic/col_reduce.h"

#include <algorithm>
#include <vector>

#include "lib/image/dither/row_mapper.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/host_palette.h"
#include "lib/image/reduce/quantize_graduated.h"
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
                             ColorRows rows(src, width, rect);
                             return MapAndWrite(args.dst, rect, rows);
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
    ColorRows rows(args.src, width, rect);
    sharedPalette_.reset();
    auto palette = std::make_unique<ReducePalette>();
    if (!ChoosePalette(*palette, rows)) {
        return false;
    }
    sharedPalette_ = std::move(palette);
    return true;
}

bool ReduceColorImageProcess::ChoosePalette(ReducePalette& palette, ColorRows& rows) const {
    return GraduateReduce ? QuantizeGraduated(palette, rows, ColorLimit())
                          : QuantizeRows(palette, rows, -ColorLimit());
}

bool ReduceColorImageProcess::MapAndWrite(RGBA16* dst, PixelRect rect, ColorRows& rows) const {
    const bool shared = SharePalette && sharedPalette_ != nullptr;
    ReducePalette own;
    if (!shared && !ChoosePalette(own, rows)) {
        return false;
    }
    const ReducePalette& palette = shared ? *sharedPalette_ : own;
    RowMapper mapper(palette, DitherType, rows.Width());
    if (!mapper.IsReady()) {
        return false;
    }
    if (dst == nullptr) {
        return true;
    }
    const HostPalette colors(palette);
    const Store store = StoreFor(rows.PixelCount());
    std::vector<uint8_t> indices(rows.Width());
    const auto stride = static_cast<size_t>(width);
    RGBA16* row = dst + static_cast<size_t>(rect.top) * stride + static_cast<size_t>(rect.left);
    for (int32_t y = 0; y < rows.Height(); ++y, row += stride) {
        mapper.MapRow(rows.Row(y), indices, rows.Ahead(y));
        colors.WriteRow(row, indices, store);
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
