#include "bench/col_reduce_bench.h"

#include "bench/test_pictures.h"
#include "plugin/imgbasic/col_reduce.h"

namespace imgbasic {
namespace {

using Picture = std::vector<RGBA16>(BenchSize size);

/// The whole filter, choosing the palette included. Arguments: colours, DitherType.
void ColReduce(benchmark::State& state, BenchSize size, Picture& makePicture, bool graduate) {
    const std::vector<RGBA16> picture = makePicture(size);
    std::vector<RGBA16> result(size.Pixels());
    ReduceColorImageProcess filter;
    filter.width = size.width;
    filter.height = size.height;
    filter.mergedImage = picture.data();
    filter.ReduceColor = static_cast<int32_t>(state.range(0));
    filter.DitherType = static_cast<int32_t>(state.range(1));
    filter.GraduateReduce = graduate;
    ExecuteArgs args{};
    args.subLayer = -1;
    args.dst = result.data();
    RunBesideMemoryCopy(state, size.Pixels() * sizeof(RGBA16), [&] { filter.Execute(args); });
    ReportReduction(state, picture, result);
}

void EveryKind(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgsProduct({{16, 256}, {0, 1, 2, 3}})->UseManualTime();
}

BENCHMARK_CAPTURE(ColReduce, opaque_2MP, k2Megapixels, OpaquePhoto, false)->Apply(EveryKind);
BENCHMARK_CAPTURE(ColReduce, opaque_16MP, k16Megapixels, OpaquePhoto, false)->Apply(EveryKind);
BENCHMARK_CAPTURE(ColReduce, soft_16MP, k16Megapixels, SoftEdged, false)->Apply(EveryKind);
BENCHMARK_CAPTURE(ColReduce, graduated_2MP, k2Megapixels, OpaquePhoto, true)
    ->Args({16, 0})
    ->UseManualTime();
BENCHMARK_CAPTURE(ColReduce, graduated_16MP, k16Megapixels, OpaquePhoto, true)
    ->Args({16, 0})
    ->UseManualTime();

}  // namespace
}  // namespace imgbasic
