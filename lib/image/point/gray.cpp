#include "lib/image/point/gray.h"

#include <algorithm>

#include "lib/image/pixels/composite.h"
#include "lib/image/pixels/hsv.h"
#include "lib/image/point/gray_forms.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

/// Rounds the channels to 8 bits, halves down; what is above kFullScale gives 255.
uint32_t HsvOf(RGBA16 color) {
    const auto byte = [](uint16_t channel) { return std::min(channel + 127U, 0xFFFFU) >> 8; };
    return PackedHsv(byte(color.r) << 16 | byte(color.g) << 8 | byte(color.b));
}

/// From 0 to kFullScale for channels up to kFullScale; others can leave that range, for Cb and Cr
/// down to -128.
template <GrayMode kMode>
int32_t GrayValue(RGBA16 color) {
    const int32_t r = color.r;
    const int32_t g = color.g;
    const int32_t b = color.b;
    switch (kMode) {
        case GrayMode::LightnessAverage:
            return (std::max({r, g, b}) + std::min({r, g, b})) >> 1;
        case GrayMode::RgbAverage:
            return (r + g + b) / 3;
        case GrayMode::NtscY:
            return (4897 * r + 9611 * g + 1876 * b) >> 14;
        case GrayMode::Value:
            return static_cast<int32_t>(HsvValue(HsvOf(color)) << 8);
        case GrayMode::Red:
            return r;
        case GrayMode::Green:
            return g;
        case GrayMode::Blue:
            return b;
        case GrayMode::Saturation:
            return static_cast<int32_t>(HsvSaturation(HsvOf(color)) << 8);
        case GrayMode::Cb:
            return ((b + kFullScale) * 8192 - 5427 * g - 2765 * r) >> 14;
        case GrayMode::Cr:
            return ((b + kFullScale) * 8192 - 6860 * r - 1332 * g) >> 14;
        case GrayMode::Black:
            return 0;
    }
}

template <GrayMode kMode>
void GrayRowScalar(RGBA16* dst, const RGBA16* src, size_t count, uint32_t tint, Store /*store*/) {
    for (size_t i = 0; i < count; ++i) {
        const RGBA16 color = OverTransparentWhite(src[i]);
        const auto gray = static_cast<uint32_t>(GrayValue<kMode>(color));
        const auto tinted = [gray](uint32_t factor) {
            return static_cast<uint16_t>(gray * (factor & 0xFF) >> 8);
        };
        dst[i] = {tinted(tint >> 16), tinted(tint >> 8), tinted(tint), color.a};
    }
}

}  // namespace

const GrayRows kGrayRowsScalar = {{
    GrayRowScalar<GrayMode::LightnessAverage>,
    GrayRowScalar<GrayMode::RgbAverage>,
    GrayRowScalar<GrayMode::NtscY>,
    GrayRowScalar<GrayMode::Value>,
    GrayRowScalar<GrayMode::Red>,
    GrayRowScalar<GrayMode::Green>,
    GrayRowScalar<GrayMode::Blue>,
    GrayRowScalar<GrayMode::Saturation>,
    GrayRowScalar<GrayMode::Cb>,
    GrayRowScalar<GrayMode::Cr>,
    GrayRowScalar<GrayMode::Black>,
}};

GrayRow& GrayRowFor(int32_t calcMode) {
    static constexpr KernelForms<const GrayRows> kForms{
        &kGrayRowsScalar, IMGBASIC_X86_FORM(&kGrayRowsAvx2), IMGBASIC_X86_FORM(&kGrayRowsAvx512)};
    constexpr auto kBlack = static_cast<size_t>(GrayMode::Black);
    // A negative number becomes a large one.
    return *kForms.Active().of[std::min(static_cast<size_t>(calcMode), kBlack)];
}

}  // namespace imgbasic
