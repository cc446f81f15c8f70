#include "plugin/imgbasic/gray.h"

#include <iterator>

#include "lib/image/point/gray.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {
namespace {

/// 0x00RRGGBB; black for a ColorMode that is none.
uint32_t TintOf(const GrayScaleImageProcess& process) {
    const uint32_t tints[] = {
        0xFFFFFF,           // white
        0xFF0000,           // red
        0x00FF00,           // green
        0x0000FF,           // blue
        0xFF00FF,           // magenta
        0x00FFFF,           // cyan
        0xFFFF00,           // yellow
        process.drawColor,  // the host's drawing colour
        process.backColor,  // the host's background colour
    };
    const auto mode = static_cast<uint32_t>(process.ColorMode);
    return mode < std::size(tints) ? tints[mode] : 0;
}

}  // namespace

int GrayScaleImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return 1;
}

bool GrayScaleImageProcess::BatchDispose() {
    return true;
}

int GrayScaleImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (reference != nullptr) {
        return ApplyNow();
    }
    return RunOptionsDialog(*this) ? 1 : -1;
}

int GrayScaleImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                                 const RGBA16* merged, uint64_t /*unused1*/, uint64_t /*unused2*/,
                                 uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool GrayScaleImageProcess::Execute(const ExecuteArgs& args) {
    GrayRow& row = GrayRowFor(CalcMode);
    const uint32_t tint = TintOf(*this);
    return ExecuteOnTarget(*this, args, MergedResult::Announced,
                           [&](RGBA16* dst, const RGBA16* src, size_t count, Store store) {
                               row(dst, src, count, tint, store);
                           });
}

bool GrayScaleImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                         double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool GrayScaleImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
