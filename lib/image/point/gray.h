#pragma once

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// How a grey value is computed from a colour, numbered as the option CalcMode.
enum class GrayMode : int32_t {
    LightnessAverage,  ///< the mean of the largest and the smallest channel
    RgbAverage,
    NtscY,
    Value,  ///< of HSV, in steps of 256
    Red,
    Green,
    Blue,
    Saturation,  ///< of HSV, in steps of 256
    Cb,
    Cr,  ///< with half the weight on blue, and the rest off red and green
    Black
};

/// Writes the grey of `count` pixels of `src`, seen over transparent white, to `dst`, which may be
/// the same buffer: every colour channel is gray * t / 256, truncated, where t is that channel's
/// byte in `tint`, 0x00RRGGBB. Alpha is what compositing makes of it. Channels above kFullScale are
/// no error.
using GrayRow = void(RGBA16* dst, const RGBA16* src, size_t count, uint32_t tint, Store store);

/// The row function of a mode; any number that is no mode has Black's.
GrayRow& GrayRowFor(int32_t calcMode);

}  // namespace imgbasic
