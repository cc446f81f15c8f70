
#include "bench/benchmark_pixels.h"
#include "plugin/imgbasic/chan_decomp.h"
#include "plugin/imgbasic/chan_merge.h"
#include "plugin/imgbasic/channel_layer_name.h"

namespace imgbasic {
namespace {

bool RunNothing() {
    return true;
}

/// A filter object's arguments for one item over two buffers of 16 megapixels.
struct BenchImage {
    static constexpr BenchSize kSize = k16Megapixels;
    std::vector<RGBA16> source =
        std::vector<RGBA16>(kSize.Pixels(), RGBA16{100, 200, 300, kFullScale});
    std::vector<RGBA16> result = std::vector<RGBA16>(kSize.Pixels());
    RECT area{0, 0, kSize.width, kSize.height};
    RECT written{};
    uint32_t opacity = 100;
    char name[kLayerNameSize] = "";

    ExecuteArgs Args(int32_t phase, int32_t layer, const char* layerName) {
        WriteLayerName(name, layerName);
        ExecuteArgs args{};
        args.phase = phase;
        args.layer = layer;
        args.subLayer = -1;
        args.dst = result.data();
        args.outRect = &written;
        args.src = source.data();
        args.inRect = &area;
        args.layerOpacity = &opacity;
        args.layerName = name;
        return args;
    }

    void Tell(ImageProcess& process) const {
        process.width = kSize.width;
        process.height = kSize.height;
    }
};

/// Beside a copy of the source to the new layer.
void ChanDecomp(benchmark::State& state) {
    BenchImage image;
    ChannelDecomposeImageProcess process;
    image.Tell(process);
    RunBesideMemoryCopy(state, BenchImage::kSize.Pixels() * sizeof(RGBA16), [&] {
        process.startLayer = -1;
        process.Execute(image.Args(0, process.curLayer, "Sky"));
    });
}

/// From the collection to the disposal, the allocation of the work planes included. Beside a copy
/// of five images: the four layers, and the result.
void ChanMerge(benchmark::State& state, uint32_t opacity) {
    static constexpr const char* kNames[] = {"[R]Sky", "[G]Sky", "[B]Sky", "[A]Sky"};
    BenchImage image;
    image.opacity = opacity;
    ChannelMergeImageProcess process;
    image.Tell(process);
    RunBesideMemoryCopy(state, 5 * BenchImage::kSize.Pixels() * sizeof(RGBA16), [&] {
        process.Dialog(RunNothing);
        for (int32_t layer = 0; layer < 4; ++layer) {
            process.Execute(image.Args(0, layer, kNames[layer]));
        }
        process.Phase(1, nullptr, nullptr, nullptr, 0, 0, nullptr);
        // Each colour layer leaves, and the next one takes its place.
        for (int layer = 0; layer < 4; ++layer) {
            process.Execute(image.Args(1, 0, ""));
        }
        process.Dispose();
    });
}

BENCHMARK(ChanDecomp)->UseManualTime();
BENCHMARK_CAPTURE(ChanMerge, opaque, 100)->UseManualTime();
BENCHMARK_CAPTURE(ChanMerge, half, 50)->UseManualTime();

}  // namespace
}  // namespace imgbasic
