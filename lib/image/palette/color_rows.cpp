#include "lib/image/palette/color_rows.h"

#include <algorithm>

#include "lib/image/palette/color_rows_forms.h"
#include "lib/image/palette/color_word.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {

void VisibleColorsScalar(uint32_t* colors, const RGBA16* pixels, size_t count) {
    std::transform(pixels, pixels + count, colors,
                   [](RGBA16 pixel) { return VisibleColor(WorkWord(pixel)); });
}

ColorRows::ColorRows(const KVBitmap* bitmap) {
    if (bitmap == nullptr || bitmap->Words().empty()) {
        return;
    }
    words_ = bitmap->Words().data();
    stride_ = static_cast<size_t>(bitmap->Width());
    height_ = bitmap->Height();
    row_.resize(stride_);
}

ColorRows::ColorRows(const RGBA16* buffer, int32_t width, PixelRect rect)
    : stride_(static_cast<size_t>(width)) {
    if (rect.IsEmpty()) {
        return;
    }
    pixels_ = buffer + static_cast<size_t>(rect.top) * stride_ + static_cast<size_t>(rect.left);
    height_ = rect.bottom - rect.top;
    row_.resize(static_cast<size_t>(rect.right - rect.left));
}

std::span<const uint32_t> ColorRows::Row(int32_t y) {
    static constexpr KernelForms<VisibleColorsForm> kForms{VisibleColorsScalar,
                                                           IMGBASIC_X86_FORM(VisibleColorsAvx2)};
    const size_t start = static_cast<size_t>(y) * stride_;
    if (words_ != nullptr) {
        std::transform(words_ + start, words_ + start + Width(), row_.begin(), VisibleColor);
    } else {
        kForms.Active()(row_.data(), pixels_ + start, Width());
    }
    return row_;
}

const RGBA16* ColorRows::Ahead(int32_t y) const {
    return pixels_ == nullptr || y + 1 >= height_
               ? nullptr
               : pixels_ + (static_cast<size_t>(y) + 1) * stride_;
}

}  // namespace imgbasic
