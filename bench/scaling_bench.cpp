#include <string>

#include "bench/benchmark_pixels.h"
#include "bench/scaling_cases.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {
namespace {

struct Kernel {
    const char* name;
    int32_t interType;
    int32_t boundary;
};

constexpr Kernel kKernels[] = {
    {"nearest", 0, 0},        {"average", 1, 0},         {"bilinear_clip", 2, 0},
    {"bilinear_clamp", 2, 1}, {"bilinear_repeat", 2, 2},
};

void Scale(benchmark::State& state, const Kernel& kernel, const ScalingCase& scaling) {
    const std::vector<RGBA16> source = scaling.Picture();
    std::vector<RGBA16> result(scaling.to.Pixels());
    const RECT area{0, 0, scaling.from.width, scaling.from.height};
    ScalingImageProcess process;
    process.width = scaling.from.width;
    process.height = scaling.from.height;
    process.newWidth = scaling.to.width;
    process.newHeight = scaling.to.height;
    process.InterType = kernel.interType;
    process.BoundaryType = kernel.boundary;
    ExecuteArgs args{};
    args.dst = result.data();
    args.src = source.data();
    args.inRect = &area;
    RunBesideMemoryCopy(state, scaling.LargerBytes(), [&] { process.Execute(args); });
}

void Halve(benchmark::State& state, const Kernel& kernel) {
    const BenchSize size = SquareOf(state);
    Scale(state, kernel, {"", size, {size.width / 2, size.height / 2}, true});
}

BENCHMARK_CAPTURE(Halve, average, kKernels[1])->Name("AverageGrowth")->Apply(GrowingSides);
BENCHMARK_CAPTURE(Halve, bilinear, kKernels[2])->Name("BilinearGrowth")->Apply(GrowingSides);

[[maybe_unused]] const bool kRegistered = [] {
    for (const ScalingCase& scaling : ScalingCases()) {
        for (const Kernel& kernel : kKernels) {
            benchmark::RegisterBenchmark(
                ("Scaling/" + std::string(kernel.name) + "/" + scaling.name).c_str(),
                [&kernel, scaling](benchmark::State& state) { Scale(state, kernel, scaling); })
                ->UseManualTime();
        }
    }
    return true;
}();

}  // namespace
}  // namespace imgbasic
