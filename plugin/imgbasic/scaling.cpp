#include "plugin/imgbasic/scaling.h"

#include "plugin/imgbasic/dialogs.h"

namespace imgbasic {

int ScalingImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    width = 512;
    height = 512;
    return RunOptionsDialog(*this) ? 1 : -1;
}

bool ScalingImageProcess::BatchDispose() {
    return true;
}

int ScalingImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (skipDialog) {
        return ApplyNow();
    }
    return RunOptionsDialog(*this) ? 1 : -1;
}

int ScalingImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                               const RGBA16* merged, uint64_t /*unused1*/, uint64_t /*unused2*/,
                               uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool ScalingImageProcess::Execute(const ExecuteArgs& /*args*/) {
    return true;
}

bool ScalingImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                       double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool ScalingImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
