#include "lib/image/reduce/host_palette.h"

#include <algorithm>

#include "lib/image/reduce/host_palette_forms.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

RGBA16 HostPixel(const KVColorPalette& entry) {
    const auto scaled = [](uint8_t channel) { return static_cast<uint16_t>(channel << 8); };
    return {scaled(entry.red), scaled(entry.green), scaled(entry.blue), scaled(entry.alpha)};
}

}  // namespace

void WriteColorsScalar(RGBA16* row, const RGBA16* colors, const uint8_t* indices, size_t count,
                       Store /*store*/) {
    std::transform(indices, indices + count, row, [&](uint8_t index) { return colors[index]; });
}

HostPalette::HostPalette(const ReducePalette& palette) {
    std::ranges::transform(palette.entries, colors_.begin(), HostPixel);
}

void HostPalette::WriteRow(RGBA16* row, std::span<const uint8_t> indices, Store store) const {
    static constexpr KernelForms<WriteColorsForm> kForms{WriteColorsScalar,
                                                         IMGBASIC_X86_FORM(WriteColorsAvx2)};
    kForms.Active()(row, colors_.data(), indices.data(), indices.size(), store);
}

}  // namespace imgbasic
