#pragma once

#include <vector>

#include "bench/benchmark_pixels.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// Times one Execute of `filter`, as its TargetType says, over `picture` beside a memory copy.
inline void RunPointFilter(benchmark::State& state, ImageProcess& filter, BenchSize size,
                           const std::vector<RGBA16>& picture) {
    std::vector<RGBA16> result(size.Pixels());
    const RECT area{0, 0, size.width, size.height};
    RECT written{};
    filter.width = size.width;
    filter.height = size.height;
    filter.mergedImage = picture.data();
    ExecuteArgs args{};
    args.subLayer = -1;
    args.dst = result.data();
    args.outRect = &written;
    args.src = picture.data();
    args.inRect = &area;
    RunBesideMemoryCopy(state, size.Pixels() * sizeof(RGBA16), [&] { filter.Execute(args); });
}

}  // namespace imgbasic
