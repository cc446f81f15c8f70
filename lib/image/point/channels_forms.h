#pragma once

#include "lib/image/point/channels.h"

namespace imgbasic {

using IsolateChannelForm = void(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                                Store store);
using ReplaceChannelForm = void(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                                uint32_t percent);

IsolateChannelForm IsolateChannelScalar;
IsolateChannelForm IsolateChannelAvx2;

ReplaceChannelForm ReplaceChannelScalar;
ReplaceChannelForm ReplaceChannelAvx2;

}  // namespace imgbasic
