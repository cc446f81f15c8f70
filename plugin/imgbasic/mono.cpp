#include "plugin/imgbasic/mono.h"

#include "plugin/imgbasic/dialogs.h"

namespace imgbasic {

int MonoImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return RunOptionsDialog(*this) ? 1 : -1;
}

bool MonoImageProcess::BatchDispose() {
    return true;
}

int MonoImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (reference != nullptr) {
        if (const auto* earlier = dynamic_cast<const MonoImageProcess*>(reference)) {
            Threshold = earlier->Threshold;
        }
        return ApplyNow();
    }
    return RunOptionsDialog(*this) ? 1 : -1;
}

int MonoImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                            const RGBA16* merged, uint64_t /*unused1*/, uint64_t /*unused2*/,
                            uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool MonoImageProcess::Execute(const ExecuteArgs& /*args*/) {
    return true;
}

bool MonoImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                    double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool MonoImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
