#include "bench/point_filter_bench.h"
#include "bench/test_pictures.h"
#include "plugin/imgbasic/mono.h"

namespace imgbasic {
namespace {

using Picture = std::vector<RGBA16>(BenchSize size);

void Mono(benchmark::State& state, BenchSize size, Picture& picture) {
    MonoImageProcess mono;
    RunPointFilter(state, mono, size, picture(size));
}

BENCHMARK_CAPTURE(Mono, opaque_2MP, k2Megapixels, OpaquePhoto)->UseManualTime();
BENCHMARK_CAPTURE(Mono, opaque_16MP, k16Megapixels, OpaquePhoto)->UseManualTime();
BENCHMARK_CAPTURE(Mono, soft_2MP, k2Megapixels, SoftEdged)->UseManualTime();
BENCHMARK_CAPTURE(Mono, soft_16MP, k16Megapixels, SoftEdged)->UseManualTime();
BENCHMARK_CAPTURE(Mono, translucent_2MP, k2Megapixels, Translucent)->UseManualTime();
BENCHMARK_CAPTURE(Mono, translucent_16MP, k16Megapixels, Translucent)->UseManualTime();

}  // namespace
}  // namespace imgbasic
