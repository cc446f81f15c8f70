#pragma once

#include <vector>

#include "bench/benchmark_pixels.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// Reports how far a reduction is from its picture: "mse", the mean squared error of the colour
/// channels on the 8-bit scale where the picture is not transparent. Also pixels per second.
inline void ReportReduction(benchmark::State& state, const std::vector<RGBA16>& picture,
                            const std::vector<RGBA16>& result) {
    double sum = 0;
    const auto add = [&sum](int a, int b) { sum += (a - b) / 256.0 * ((a - b) / 256.0); };
    size_t visible = 0;
    for (size_t i = 0; i < picture.size(); ++i) {
        if (picture[i].a == 0) {
            continue;
        }
        ++visible;
        add(picture[i].r, result[i].r);
        add(picture[i].g, result[i].g);
        add(picture[i].b, result[i].b);
    }
    state.counters["mse"] = sum / (3 * static_cast<double>(visible));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(picture.size()));
}

}  // namespace imgbasic
