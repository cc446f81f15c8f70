#include "bench/benchmark_pixels.h"
#include "plugin/imgbasic/nega.h"

namespace imgbasic {
namespace {

void Nega(benchmark::State& state, BenchSize size, TargetKind target) {
    const std::vector<RGBA16> source(size.Pixels(), RGBA16{100, 200, 300, kFullScale});
    std::vector<RGBA16> result(size.Pixels());
    const RECT area{0, 0, size.width, size.height};
    RECT written{};
    NegaImageProcess nega;
    nega.width = size.width;
    nega.height = size.height;
    nega.TargetType = target;
    nega.mergedImage = source.data();
    ExecuteArgs args{};
    args.subLayer = -1;
    args.dst = result.data();
    args.outRect = &written;
    args.src = source.data();
    args.inRect = &area;
    RunBesideMemoryCopy(state, size.Pixels() * sizeof(RGBA16), [&] { nega.Execute(args); });
}

BENCHMARK_CAPTURE(Nega, merged_2MP, k2Megapixels, MergedImage)->UseManualTime();
BENCHMARK_CAPTURE(Nega, merged_16MP, k16Megapixels, MergedImage)->UseManualTime();
BENCHMARK_CAPTURE(Nega, layer_2MP, k2Megapixels, AllLayers)->UseManualTime();
BENCHMARK_CAPTURE(Nega, layer_16MP, k16Megapixels, AllLayers)->UseManualTime();

}  // namespace
}  // namespace imgbasic
