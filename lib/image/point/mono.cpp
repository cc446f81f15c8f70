#include "lib/image/point/mono.h"

#include "lib/image/pixels/composite.h"
#include "lib/image/point/mono_forms.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {

void ToTwoLevelsScalar(RGBA16* dst, const RGBA16* src, size_t count, int32_t level,
                       Store /*store*/) {
    for (size_t i = 0; i < count; ++i) {
        const RGBA16 color = OverTransparentWhite(src[i]);
        const uint16_t result = color.r >= level ? kFullScale : 0;
        dst[i] = {result, result, result, color.a};
    }
}

void ToTwoLevels(RGBA16* dst, const RGBA16* src, size_t count, int32_t level, Store store) {
    static constexpr KernelForms<ToTwoLevelsForm> kForms{ToTwoLevelsScalar,
                                                         IMGBASIC_X86_FORM(ToTwoLevelsAvx2),
                                                         IMGBASIC_X86_FORM(ToTwoLevelsAvx512)};
    kForms.Active()(dst, src, count, level, store);
}

}  // namespace imgbasic
