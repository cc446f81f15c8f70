#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "lib/image/pixels/store.h"

// The library's options, and how large results are written: --streaming=on|off|auto.
int main(int argc, char** argv) {
    using imgbasic::ScopedStore;
    using imgbasic::Store;
    benchmark::Initialize(&argc, argv);
    std::optional<ScopedStore> forced;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--streaming=on") {
            forced.emplace(Store::Streaming);
        } else if (word == "--streaming=off") {
            forced.emplace(Store::Cached);
        } else if (word != "--streaming=auto") {
            std::fprintf(stderr, "%s: unknown; besides --streaming=on|off|auto: --help\n", argv[i]);
            return EXIT_FAILURE;
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
