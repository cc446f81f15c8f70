#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <functional>
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

/// The sides of square pictures over which the time a pixel is followed: a preview, 1 to 64
/// megapixels.
inline void GrowingSides(benchmark::internal::Benchmark* benchmark) {
    for (const int64_t side : {256, 1024, 2048, 4096, 8192}) {
        benchmark->Arg(side);
    }
    benchmark->UseManualTime();
}

inline BenchSize SquareOf(const benchmark::State& state) {
    const auto side = static_cast<int32_t>(state.range(0));
    return {side, side};
}

/// Copies `bytes` between buffers of its own that are kept warm; the yardstick of every ratio.
void CopyMemory(size_t bytes);

/// What an operation is compared with, and the counter that tells the outcome.
struct BenchPeer {
    const char* counter;
    std::function<void()> run;
};

/// Times `operation` in turn with every peer and reports in the peer's counter its median time
/// over the operation's: how many times as fast as the peer the operation is. Taking turns lets
/// a busy machine slow all alike.
void RunBesidePeers(benchmark::State& state, const std::vector<BenchPeer>& peers,
                    const std::function<void()>& operation);

/// Compares `operation` with a memory copy of `bytes` in "copy_ratio".
inline void RunBesideMemoryCopy(benchmark::State& state, size_t bytes,
                                const std::function<void()>& operation) {
    RunBesidePeers(state, {{"copy_ratio", [bytes] { CopyMemory(bytes); }}}, operation);
}

}  // namespace imgbasic
