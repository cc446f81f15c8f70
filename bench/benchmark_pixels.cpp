#include "bench/benchmark_pixels.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace imgbasic {
namespace {

double TimeOf(const std::function<void()>& operation) {
    const auto start = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double>& times) {
    const auto middle = times.begin() + static_cast<ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

}  // namespace

void CopyMemory(size_t bytes) {
    static std::vector<unsigned char> source;
    static std::vector<unsigned char> destination;
    if (source.size() < bytes) {
        source.assign(bytes, 0x5A);
        destination.assign(bytes, 0);
    }
    std::memcpy(destination.data(), source.data(), bytes);
    benchmark::DoNotOptimize(destination.data());
    benchmark::ClobberMemory();
}

void RunBesidePeers(benchmark::State& state, const std::vector<BenchPeer>& peers,
                    const std::function<void()>& operation) {
    std::vector<double> own;
    std::vector<std::vector<double>> others(peers.size());
    for (const BenchPeer& peer : peers) {
        peer.run();
    }
    operation();
    for (auto iteration : state) {
        (void)iteration;
        for (size_t i = 0; i < peers.size(); ++i) {
            others[i].push_back(TimeOf(peers[i].run));
        }
        own.push_back(TimeOf(operation));
        state.SetIterationTime(own.back());
    }
    for (size_t i = 0; i < peers.size(); ++i) {
        state.counters[peers[i].counter] = Median(others[i]) / Median(own);
    }
}

}  // namespace imgbasic
