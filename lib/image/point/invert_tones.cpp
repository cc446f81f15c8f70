#include "lib/image/point/invert_tones.h"

#include "lib/image/point/invert_tones_forms.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {

void InvertTonesScalar(RGBA16* dst, const RGBA16* src, size_t count, Store /*store*/) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = InvertTone(src[i]);
    }
}

void InvertTones(RGBA16* dst, const RGBA16* src, size_t count, Store store) {
    static constexpr KernelForms<InvertTonesForm> kForms{InvertTonesScalar,
                                                         IMGBASIC_X86_FORM(InvertTonesAvx2)};
    kForms.Active()(dst, src, count, store);
}

}  // namespace imgbasic
