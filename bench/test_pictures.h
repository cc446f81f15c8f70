#pragma once

#include <vector>

#include "bench/benchmark_pixels.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

// Pictures for benchmarks, the same at every run: size.width x size.height pixels that look like
// a photograph to a kernel, with smooth gradients, fine noise and hard edges in every channel.

/// Every pixel opaque.
std::vector<RGBA16> OpaquePhoto(BenchSize size);

/// The photo cut out as a pattern of discs with soft edges: about one tenth of the pixels are
/// translucent, half are opaque, the rest are fully transparent.
std::vector<RGBA16> SoftEdged(BenchSize size);

/// The photo with an alpha between 1 and kFullScale - 1 in every pixel.
std::vector<RGBA16> Translucent(BenchSize size);

}  // namespace imgbasic
