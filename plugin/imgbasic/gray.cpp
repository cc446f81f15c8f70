#include "plugin/imgbasic/gray.h"

#include "plugin/imgbasic/dialogs.h"

namespace imgbasic {

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

bool GrayScaleImageProcess::Execute(const ExecuteArgs& /*args*/) {
    return true;
}

bool GrayScaleImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                         double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool GrayScaleImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
