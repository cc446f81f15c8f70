#include "bench/col_reduce_bench.h"

#include "bench/test_pictures.h"
#include "plugin/imgbasic/col_reduce.h"

namespace imgbasic {
namespace {

using Picture = std::vector<RGBA16>(BenchSize size);

/// The whole filter, choosing the palette included, with the options of `filter`.
void Reduce(benchmark::State& state, ReduceColorImageProcess& filter, BenchSize size,
            const std::vector<RGBA16>& picture) {
    std::vector<RGBA16> result(size.Pixels());
    filter.width = size.width;
    filter.height = size.height;
    filter.mergedImage = picture.data();
    ExecuteArgs args{};
    args.subLayer = -1;
    args.dst = result.data();
    RunBesideMemoryCopy(state, size.Pixels() * sizeof(RGBA16), [&] { filter.Execute(args); });
    ReportReduction(state, picture, result);
}

/// Arguments: colours, DitherType.
void ColReduce(benchmark::State& state, BenchSize size, Picture& makePicture, bool graduate) {
    ReduceColorImageProcess filter;
    filter.ReduceColor = static_cast<int32_t>(state.range(0));
    filter.DitherType = static_cast<int32_t>(state.range(1));
    filter.GraduateReduce = graduate;
    Reduce(state, filter, size, makePicture(size));
}

void ColReduceGrowth(benchmark::State& state) {
    ReduceColorImageProcess filter;
    filter.ReduceColor = 256;
    filter.DitherType = 0;
    Reduce(state, filter, SquareOf(state), OpaquePhoto(SquareOf(state)));
}

void EveryKind(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgsProduct({{16, 256}, {0, 1, 2, 3}})->UseManualTime();
}

void EveryCount(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgsProduct({{2, 4, 8, 16, 32, 64, 128, 256}, {0, 1, 3}})->UseManualTime();
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

BENCHMARK_CAPTURE(ColReduce, colors, k2Megapixels, OpaquePhoto, false)
    ->Name("ColReduceColors")
    ->Apply(EveryCount);
BENCHMARK(ColReduceGrowth)->Apply(GrowingSides);

}  // namespace
}  // namespace imgbasic
