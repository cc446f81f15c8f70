#include "lib/image/dither/row_mapper.h"

#include <utility>

#include "lib/image/simd/simd.h"

namespace imgbasic {
RowMapper::RowMapper(const ReducePalette& palette, int32_t ditherKind, size_t width)
    : lookup_(palette),
      kind_(ditherKind),
      ready_(lookup_.IsReady() && ditherKind >= NoDither && ditherKind <= LargeDiffusion) {
    if (ready_ && ditherKind >= SmallDiffusion) {
        const size_t length = 1 + width + kErrorsBehind;
        errorBlock_ = AllocateZeroed(2 * length * sizeof(ColorError));
        ready_ = errorBlock_ != nullptr;
        errors_ = reinterpret_cast<ColorError*>(errorBlock_.get()) + 1;
        errorsAbove_ = errors_ + length;
        regions_.emplace(palette);
    }
}

void RowMapper::MapRow(std::span<const uint32_t> colors, std::span<uint8_t> indices,
                       const RGBA16* ahead) {
    static constexpr KernelForms<MapPlainForm> kPlain{MapPlainRowScalar,
                                                      IMGBASIC_X86_FORM(MapPlainRowAvx2)};
    static constexpr KernelForms<MapOrderedForm> kOrdered{MapOrderedRowScalar,
                                                          IMGBASIC_X86_FORM(MapOrderedRowAvx2)};
    switch (kind_) {
        case NoDither:
            kPlain.Active()(lookup_, colors.data(), indices.data(), colors.size(), ahead);
            break;
        case OrderedDither:
            kOrdered.Active()(lookup_, colors.data(), indices.data(), colors.size(), ahead,
                              OrderedOffsetsOf(y_));
            break;
        default:
            MapDiffused(colors, indices, ahead);
    }
    ++y_;
}

void RowMapper::MapDiffused(std::span<const uint32_t> colors, std::span<uint8_t> indices,
                            const RGBA16* ahead) {
    static constexpr KernelForms<MapDiffusedForm> kDiffused{MapDiffusedRowScalar,
                                                            IMGBASIC_X86_FORM(MapDiffusedRowAvx2)};
    kDiffused.Active()({lookup_, *regions_}, colors.data(), indices.data(), colors.size(), ahead,
                       y_ % 2 == 0 ? 1 : -1, {errorsAbove_, errors_}, kind_ == LargeDiffusion);
    std::swap(errorsAbove_, errors_);
}

}  // namespace imgbasic
