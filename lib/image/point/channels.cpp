#include "lib/image/point/channels.h"

#include "lib/image/point/channels_forms.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {

void IsolateChannelScalar(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                          Store /*store*/) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = IsolateChannel(src[i], channel);
    }
}

void IsolateChannel(RGBA16* dst, const RGBA16* src, size_t count, Channel channel, Store store) {
    static constexpr KernelForms<IsolateChannelForm> kForms{IsolateChannelScalar,
                                                            IMGBASIC_X86_FORM(IsolateChannelAvx2)};
    kForms.Active()(dst, src, count, channel, store);
}

void ReplaceChannelScalar(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                          uint32_t percent) {
    const auto member = MemberOf(channel);
    for (size_t i = 0; i < count; ++i) {
        dst[i].*member = PercentOf(src[i].*member, percent);
    }
}

void ReplaceChannel(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                    uint32_t percent) {
    static constexpr KernelForms<ReplaceChannelForm> kForms{ReplaceChannelScalar,
                                                            IMGBASIC_X86_FORM(ReplaceChannelAvx2)};
    kForms.Active()(dst, src, count, channel, percent);
}

}  // namespace imgbasic
