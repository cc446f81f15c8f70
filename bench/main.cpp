#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "lib/image/pixels/store.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

/// What the words of the command line force for the whole run.
struct Forced {
    std::optional<ScopedStore> store;
    std::optional<ScopedSimdLevel> level;

    /// False for a word that is none of ours.
    bool Take(std::string_view word) {
        if (word == "--streaming=on") {
            store.emplace(Store::Streaming);
        } else if (word == "--streaming=off") {
            store.emplace(Store::Cached);
        } else if (word == "--simd=scalar") {
            level.emplace(SimdLevel::Scalar);
        } else if (word == "--simd=avx2" && SupportedSimdLevel() >= SimdLevel::Avx2) {
            level.emplace(SimdLevel::Avx2);
        } else {
            return word == "--streaming=auto" || word == "--simd=auto";
        }
        return true;
    }
};

}  // namespace
}  // namespace imgbasic

// The library's options, how large results are written (--streaming=on|off|auto), and the
// instruction sets that kernels may use (--simd=scalar|avx2|auto).
int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    imgbasic::Forced forced;
    for (int i = 1; i < argc; ++i) {
        if (!forced.Take(argv[i])) {
            std::fprintf(stderr,
                         "%s: unknown or not to be had here; besides --streaming=on|off|auto and "
                         "--simd=scalar|avx2|auto: --help\n",
                         argv[i]);
            return EXIT_FAILURE;
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
