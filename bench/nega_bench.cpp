#include "bench/point_filter_bench.h"
#include "bench/test_pictures.h"
#include "plugin/imgbasic/nega.h"

namespace imgbasic {
namespace {

void Nega(benchmark::State& state, BenchSize size, TargetKind target) {
    NegaImageProcess nega;
    nega.TargetType = target;
    RunPointFilter(state, nega, size, OpaquePhoto(size));
}

BENCHMARK_CAPTURE(Nega, merged_2MP, k2Megapixels, MergedImage)->UseManualTime();
BENCHMARK_CAPTURE(Nega, merged_16MP, k16Megapixels, MergedImage)->UseManualTime();
BENCHMARK_CAPTURE(Nega, layer_2MP, k2Megapixels, AllLayers)->UseManualTime();
BENCHMARK_CAPTURE(Nega, layer_16MP, k16Megapixels, AllLayers)->UseManualTime();

void NegaGrowth(benchmark::State& state) {
    Nega(state, SquareOf(state), MergedImage);
}

BENCHMARK(NegaGrowth)->Apply(GrowingSides);

}  // namespace
}  // namespace imgbasic
