#pragma once

#include "lib/image/point/channels.h"

namespace imgbasic {

using IsolateChannelForm = void(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                                Store store);
using TakeChannelForm = void(uint16_t* plane, const RGBA16* src, size_t count, Channel channel,
                             uint32_t percent, Store store);
using JoinChannelsForm = void(RGBA16* dst, const ColorPlanes& colors, const RGBA16* alphas,
                              size_t count, Store store);

IsolateChannelForm IsolateChannelScalar;
IsolateChannelForm IsolateChannelAvx2;

TakeChannelForm TakeChannelScalar;
TakeChannelForm TakeChannelAvx2;

JoinChannelsForm JoinChannelsScalar;
JoinChannelsForm JoinChannelsAvx2;

}  // namespace imgbasic
