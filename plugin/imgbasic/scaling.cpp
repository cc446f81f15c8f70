#include "plugin/imgbasic/scaling.h"

#include <algorithm>

#include "lib/image/resample/resample.h"
#include "plugin/imgbasic/dialogs.h"

namespace imgbasic {
namespace {

/// The product wraps like the 32-bit number that it is.
int32_t PercentOfSide(int32_t percent, int32_t size) {
    const auto product =
        static_cast<int32_t>(static_cast<uint32_t>(percent) * static_cast<uint32_t>(size));
    return std::clamp(product / 100, kSide.least, kSide.most);
}

ResampleRect WholeImage(int32_t width, int32_t height) {
    return {0, 0, static_cast<double>(width), static_cast<double>(height)};
}

}  // namespace

int ScalingImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    width = 512;
    height = 512;
    return RunOptionsDialog(*this);
}

bool ScalingImageProcess::BatchDispose() {
    return true;
}

int ScalingImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (skipDialog) {
        if (RatioSize) {
            SetSizeFromRatio();
        }
        return ApplyNow();
    }
    return RunOptionsDialog(*this);
}

int ScalingImageProcess::Phase(int /*phase*/, uint32_t* resultWidth, uint32_t* resultHeight,
                               const RGBA16* /*merged*/, uint64_t /*unused1*/, uint64_t /*unused2*/,
                               uint32_t* /*phaseFlag*/) {
    if (ResultWidth() == width && ResultHeight() == height) {
        return -1;
    }
    StoreThrough(resultWidth, static_cast<uint32_t>(ResultWidth()));
    StoreThrough(resultHeight, static_cast<uint32_t>(ResultHeight()));
    return 1;
}

bool ScalingImageProcess::Execute(const ExecuteArgs& args) {
    if (args.inRect == nullptr) {
        return true;
    }
    if (!args.skipPixels) {
        const ResampleTarget target{args.dst, ResultWidth(), ResultHeight(),
                                    WholeImage(ResultWidth(), ResultHeight())};
        const ResampleSource source{args.src, width, height, WholeImage(width, height)};
        const RECT& area = *args.inRect;
        const PixelRect clip{area.left, area.top, area.right, area.bottom};
        switch (InterType) {
            case 0:
                ResampleNearest(target, source, clip);
                break;
            case 1:
                ResampleAverage(target, source, clip);
                break;
            case 2:
                ResampleBilinear(BoundaryType, BoundAlpha, target, source, clip);
                break;
            default:
                break;
        }
    }
    if (args.outRect != nullptr) {
        *args.outRect = {0, 0, ResultWidth(), ResultHeight()};
    }
    return true;
}

void ScalingImageProcess::AdjustScale(int /*unused1*/, int /*unused2*/, double* scaleX,
                                      double* scaleY) {
    if (!ChangeBrush) {
        return;
    }
    if (scaleX != nullptr) {
        *scaleX = static_cast<double>(ResultWidth()) / width;
    }
    if (scaleY != nullptr) {
        *scaleY = static_cast<double>(ResultHeight()) / height;
    }
}

bool ScalingImageProcess::AdjustLocate(int /*index*/, int /*layer*/, int /*subLayer*/, double* x,
                                       double* y) {
    if (x != nullptr) {
        *x = ResultWidth() * *x / width;
    }
    if (y != nullptr) {
        *y = ResultHeight() * *y / height;
    }
    return true;
}

bool ScalingImageProcess::Dispose() {
    return true;
}

void ScalingImageProcess::SetSizeFromRatio() {
    newWidth = PercentOfSide(RatioWidth, width);
    newHeight = PercentOfSide(RatioHeight, height);
}

}  // namespace imgbasic
