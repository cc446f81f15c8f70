#include "bench/point_filter_bench.h"
#include "bench/test_pictures.h"
#include "plugin/imgbasic/gray.h"

namespace imgbasic {
namespace {

using Picture = std::vector<RGBA16>(BenchSize size);

/// One picture in each CalcMode.
void Gray(benchmark::State& state, BenchSize size, Picture& picture) {
    GrayScaleImageProcess gray;
    gray.CalcMode = static_cast<int32_t>(state.range(0));
    RunPointFilter(state, gray, size, picture(size));
}

void GrayGrowth(benchmark::State& state) {
    GrayScaleImageProcess gray;
    RunPointFilter(state, gray, SquareOf(state), Translucent(SquareOf(state)));
}

BENCHMARK_CAPTURE(Gray, opaque_2MP, k2Megapixels, OpaquePhoto)->DenseRange(0, 9)->UseManualTime();
BENCHMARK_CAPTURE(Gray, opaque_16MP, k16Megapixels, OpaquePhoto)->DenseRange(0, 9)->UseManualTime();
BENCHMARK_CAPTURE(Gray, soft_2MP, k2Megapixels, SoftEdged)->DenseRange(0, 9)->UseManualTime();
BENCHMARK_CAPTURE(Gray, soft_16MP, k16Megapixels, SoftEdged)->DenseRange(0, 9)->UseManualTime();
BENCHMARK_CAPTURE(Gray, translucent_2MP, k2Megapixels, Translucent)
    ->DenseRange(0, 9)
    ->UseManualTime();
BENCHMARK_CAPTURE(Gray, translucent_16MP, k16Megapixels, Translucent)
    ->DenseRange(0, 9)
    ->UseManualTime();

BENCHMARK(GrayGrowth)->Apply(GrowingSides);

}  // namespace
}  // namespace imgbasic
