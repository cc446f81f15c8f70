// What other libraries need for the same enlargements and reductions, one thread each. They do not
// weight colour by alpha, so their results are right for opaque pictures only. libvips's linear
// kernel widens with the reduction, as an area average does.
#include <stdexcept>
#include <string>

#include "bench/scaling_cases.h"

#ifdef IMGBASIC_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#ifdef IMGBASIC_BENCH_VIPS
#include <vips/vips.h>
#endif

namespace imgbasic {
namespace {

/// Draws `source` into `result`, both as large as the case says.
using PeerScale = void(const ScalingCase& scaling, std::vector<RGBA16>& source,
                       std::vector<RGBA16>& result);

#ifdef IMGBASIC_BENCH_OPENCV

template <int kInterpolation>
void ScaleWithOpenCv(const ScalingCase& scaling, std::vector<RGBA16>& source,
                     std::vector<RGBA16>& result) {
    cv::setNumThreads(1);
    const cv::Mat from(scaling.from.height, scaling.from.width, CV_16UC4, source.data());
    cv::Mat to(scaling.to.height, scaling.to.width, CV_16UC4, result.data());
    cv::resize(from, to, to.size(), 0, 0, kInterpolation);
}

#endif

#ifdef IMGBASIC_BENCH_VIPS

/// libvips makes its own result buffer.
template <VipsKernel kKernel>
void ScaleWithVips(const ScalingCase& scaling, std::vector<RGBA16>& source,
                   std::vector<RGBA16>& /*result*/) {
    [[maybe_unused]] static const bool kReady = [] {
        if (VIPS_INIT("imgbasic_bench") != 0) {
            throw std::runtime_error(vips_error_buffer());
        }
        vips_concurrency_set(1);
        vips_cache_set_max(0);
        return true;
    }();
    VipsImage* from =
        vips_image_new_from_memory(source.data(), source.size() * sizeof(RGBA16),
                                   scaling.from.width, scaling.from.height, 4, VIPS_FORMAT_USHORT);
    VipsImage* to = nullptr;
    const double scaleX = static_cast<double>(scaling.to.width) / scaling.from.width;
    const double scaleY = static_cast<double>(scaling.to.height) / scaling.from.height;
    if (vips_resize(from, &to, scaleX, "vscale", scaleY, "kernel", kKernel, nullptr) != 0) {
        throw std::runtime_error(vips_error_buffer());
    }
    size_t size = 0;
    void* pixels = vips_image_write_to_memory(to, &size);
    benchmark::DoNotOptimize(pixels);
    g_free(pixels);
    g_object_unref(to);
    g_object_unref(from);
}

#endif

struct Peer {
    const char* name;
    PeerScale* scale;
};

constexpr std::initializer_list<Peer> kPeers = {
#ifdef IMGBASIC_BENCH_OPENCV
    {"opencv_nearest", ScaleWithOpenCv<cv::INTER_NEAREST>},
    {"opencv_area", ScaleWithOpenCv<cv::INTER_AREA>},
    {"opencv_linear", ScaleWithOpenCv<cv::INTER_LINEAR>},
#endif
#ifdef IMGBASIC_BENCH_VIPS
    {"vips_nearest", ScaleWithVips<VIPS_KERNEL_NEAREST>},
    {"vips_linear", ScaleWithVips<VIPS_KERNEL_LINEAR>},
#endif
};

[[maybe_unused]] const bool kRegistered = [] {
    for (const ScalingCase& scaling : ScalingCases()) {
        for (const Peer& peer : kPeers) {
            if (!scaling.opaque) {
                continue;
            }
            benchmark::RegisterBenchmark(
                ("ScalingPeer/" + std::string(peer.name) + "/" + scaling.name).c_str(),
                [&peer, scaling](benchmark::State& state) {
                    std::vector<RGBA16> source = scaling.Picture();
                    std::vector<RGBA16> result(scaling.to.Pixels());
                    RunBesideMemoryCopy(state, scaling.LargerBytes(),
                                        [&] { peer.scale(scaling, source, result); });
                })
                ->UseManualTime();
        }
    }
    return true;
}();

}  // namespace
}  // namespace imgbasic
