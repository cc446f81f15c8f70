#pragma once

#include <vector>

#include "bench/benchmark_pixels.h"
#include "lib/image/rgba16.h"

namespace imgbasic {

/// Reports how far a reduction is from its picture: "mse", the mean squared error of the colour
/// channels on the 8-bit scale. Also pixels per second.
inline void ReportReduction(benchmark::State& state, const std::vector<RGBA16>& picture,
                            const std::vector<RGBA16>& result) {
    double sum = 0;
    const auto add = [&sum](int a, int b) { sum += (a - b) / 256.0 * ((a - b) / 256.0); };
    for (size_t i = 0; i < picture.size(); ++i) {
        add(picture[i].r, result[i].r);
        add(picture[i].g, result[i].g);
        add(picture[i].b, result[i].b);
    }
    const auto pixels = static_cast<double>(picture.size());
    state.counters["mse"] = sum / (3 * pixels);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(picture.size()));
}

}  // namespace imgbasic
