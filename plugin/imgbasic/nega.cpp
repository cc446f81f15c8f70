#include "plugin/imgbasic/nega.h"

#include "lib/image/point/invert_tones.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {

int NegaImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return 1;
}

bool NegaImageProcess::BatchDispose() {
    return true;
}

int NegaImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (reference != nullptr) {
        return ApplyNow();
    }
    return RunOptionsDialog(*this) ? 1 : -1;
}

int NegaImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                            const RGBA16* merged, uint64_t /*unused1*/, uint64_t /*unused2*/,
                            uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool NegaImageProcess::Execute(const ExecuteArgs& args) {
    return ExecuteOnTarget(*this, args, MergedResult::Silent, InvertTones);
}

bool NegaImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                    double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool NegaImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
