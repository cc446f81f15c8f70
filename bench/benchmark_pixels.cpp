#include "bench/benchmark_pixels.h"

#include <cstring>

namespace imgbasic {

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

}  // namespace imgbasic
