#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace imgbasic {

/// Image size of a benchmark.
struct BenchSize {
    int32_t width;
    int32_t height;

    size_t Pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

/// What the tables call 2 and 16 megapixels.
constexpr BenchSize k2Megapixels{1920, 1080};
constexpr BenchSize k16Megapixels{4928, 3264};

/// Copies `bytes` between buffers of its own that are kept warm; the yardstick of every ratio.
void CopyMemory(size_t bytes);

inline double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times `operation` in turn with a memory copy of `bytes` and reports "copy_ratio": the median
/// time of the copy over the median time of the operation. Alternating the two lets a busy
/// machine slow both alike.
template <typename Operation>
void RunBesideMemoryCopy(benchmark::State& state, size_t bytes, Operation&& operation) {
    std::vector<double> own;
    std::vector<double> copies;
    CopyMemory(bytes);
    operation();
    for (auto iteration : state) {
        (void)iteration;
        auto start = std::chrono::steady_clock::now();
        CopyMemory(bytes);
        copies.push_back(SecondsSince(start));
        start = std::chrono::steady_clock::now();
        operation();
        own.push_back(SecondsSince(start));
        state.SetIterationTime(own.back());
    }
    const auto median = [](std::vector<double>& times) {
        std::nth_element(times.begin(), times.begin() + static_cast<ptrdiff_t>(times.size() / 2),
                         times.end());
        return times[times.size() / 2];
    };
    state.counters["copy_ratio"] = median(copies) / median(own);
}

}  // namespace imgbasic
