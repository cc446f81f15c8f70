#pragma once

#include <cstddef>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// The channels in the order in which a pixel holds them.
enum class Channel { R, G, B, A };

constexpr size_t IndexOf(Channel channel) {
    return static_cast<size_t>(channel);
}

inline uint16_t RGBA16::*MemberOf(Channel channel) {
    static constexpr uint16_t RGBA16::*kMembers[] = {&RGBA16::r, &RGBA16::g, &RGBA16::b,
                                                     &RGBA16::a};
    return kMembers[IndexOf(channel)];
}

/// One channel of a pixel on its own: a colour on opaque black, alpha as the alpha of black.
inline RGBA16 IsolateChannel(RGBA16 pixel, Channel channel) {
    RGBA16 isolated{0, 0, 0, kFullScale};
    isolated.*MemberOf(channel) = pixel.*MemberOf(channel);
    return isolated;
}

/// `percent` hundredths of a channel value, truncated toward zero. The product is a 32-bit signed
/// integer; a host's percentage above 100 may make it wrap.
inline uint16_t PercentOf(uint16_t value, uint32_t percent) {
    return static_cast<uint16_t>(static_cast<int32_t>(value * percent) / 100);
}

/// Writes IsolateChannel of `count` pixels of `src` to `dst`, which may be the same buffer.
void IsolateChannel(RGBA16* dst, const RGBA16* src, size_t count, Channel channel, Store store);

/// Writes PercentOf `channel` in `count` pixels of `src` to `plane`; 100 % copies it.
void TakeChannel(uint16_t* plane, const RGBA16* src, size_t count, Channel channel,
                 uint32_t percent, Store store);

/// The colour channels of a run of pixels, each on its own.
struct ColorPlanes {
    const uint16_t* r;
    const uint16_t* g;
    const uint16_t* b;
};

/// Writes `count` pixels of the given colours to `dst`, with the alpha of `alphas`, which may be
/// the same buffer.
void JoinChannels(RGBA16* dst, const ColorPlanes& colors, const RGBA16* alphas, size_t count,
                  Store store);

}  // namespace imgbasic
