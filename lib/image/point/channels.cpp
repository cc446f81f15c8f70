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

void TakeChannelScalar(uint16_t* plane, const RGBA16* src, size_t count, Channel channel,
                       uint32_t percent, Store /*store*/) {
    const auto member = MemberOf(channel);
    for (size_t i = 0; i < count; ++i) {
        plane[i] = PercentOf(src[i].*member, percent);
    }
}

void TakeChannel(uint16_t* plane, const RGBA16* src, size_t count, Channel channel,
                 uint32_t percent, Store store) {
    static constexpr KernelForms<TakeChannelForm> kForms{TakeChannelScalar,
                                                         IMGBASIC_X86_FORM(TakeChannelAvx2)};
    kForms.Active()(plane, src, count, channel, percent, store);
}

void JoinChannelsScalar(RGBA16* dst, const ColorPlanes& colors, const RGBA16* alphas, size_t count,
                        Store /*store*/) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = {colors.r[i], colors.g[i], colors.b[i], alphas[i].a};
    }
}

void JoinChannels(RGBA16* dst, const ColorPlanes& colors, const RGBA16* alphas, size_t count,
                  Store store) {
    static constexpr KernelForms<JoinChannelsForm> kForms{JoinChannelsScalar,
                                                          IMGBASIC_X86_FORM(JoinChannelsAvx2)};
    kForms.Active()(dst, colors, alphas, count, store);
}

}  // namespace imgbasic
