// What OpenCV needs for the point and channel filters, on one thread. Every operation ends with a
// whole picture of four 16-bit channels, as ours do. It composites nothing and its grey rounds in
// its own way, so only the work is alike.
#ifdef IMGBASIC_BENCH_OPENCV
#include <opencv2/imgproc.hpp>

#include "bench/benchmark_pixels.h"
#include "bench/test_pictures.h"

namespace imgbasic {
namespace {

/// Draws `source` into `result`.
using PeerFilter = void(const cv::Mat& source, cv::Mat& result);

void Run(benchmark::State& state, PeerFilter& filter) {
    cv::setNumThreads(1);
    const BenchSize size = k16Megapixels;
    std::vector<RGBA16> picture = OpaquePhoto(size);
    std::vector<RGBA16> pixels(size.Pixels());
    const cv::Mat source(size.height, size.width, CV_16UC4, picture.data());
    cv::Mat result(size.height, size.width, CV_16UC4, pixels.data());
    RunBesideMemoryCopy(state, size.Pixels() * sizeof(RGBA16), [&] { filter(source, result); });
}

void Invert(const cv::Mat& source, cv::Mat& result) {
    cv::absdiff(source, cv::Scalar(kFullScale, kFullScale, kFullScale, 0), result);
}

/// Copies channels, counted through all `sources`: pairs of from and to.
void CopyChannels(const std::vector<cv::Mat>& sources, cv::Mat& result,
                  const std::vector<int>& pairs) {
    std::vector<cv::Mat> results{result};
    cv::mixChannels(sources, results, pairs);
}

void CopyAlpha(const cv::Mat& source, cv::Mat& result) {
    CopyChannels({source}, result, {3, 3});
}

void Gray(const cv::Mat& source, cv::Mat& result) {
    static cv::Mat gray;
    cv::cvtColor(source, gray, cv::COLOR_RGBA2GRAY);
    cv::cvtColor(gray, result, cv::COLOR_GRAY2RGBA);
    CopyAlpha(source, result);
}

void TwoLevels(const cv::Mat& source, cv::Mat& result) {
    static cv::Mat gray;
    static cv::Mat levels;
    cv::cvtColor(source, gray, cv::COLOR_RGBA2GRAY);
    cv::threshold(gray, levels, kFullScale / 2.0, kFullScale, cv::THRESH_BINARY);
    cv::cvtColor(levels, result, cv::COLOR_GRAY2RGBA);
    CopyAlpha(source, result);
}

void OneChannel(const cv::Mat& source, cv::Mat& result) {
    CopyChannels({source}, result, {0, 0, 0, 1, 0, 2, 3, 3});
}

/// All four layers at once, where ours are handed over one by one.
void Merge(const cv::Mat& source, cv::Mat& result) {
    static const cv::Mat layers[] = {source.clone(), source.clone(), source.clone()};
    CopyChannels({source, layers[0], layers[1], layers[2]}, result, {0, 0, 5, 1, 10, 2, 15, 3});
}

BENCHMARK_CAPTURE(Run, invert, Invert)->Name("PointPeer/opencv_invert")->UseManualTime();
BENCHMARK_CAPTURE(Run, gray, Gray)->Name("PointPeer/opencv_gray")->UseManualTime();
BENCHMARK_CAPTURE(Run, two_levels, TwoLevels)->Name("PointPeer/opencv_two_levels")->UseManualTime();
BENCHMARK_CAPTURE(Run, channel, OneChannel)->Name("PointPeer/opencv_channel")->UseManualTime();
BENCHMARK_CAPTURE(Run, merge, Merge)->Name("PointPeer/opencv_merge")->UseManualTime();

}  // namespace
}  // namespace imgbasic
#endif
