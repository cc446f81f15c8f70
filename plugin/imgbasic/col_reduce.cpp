#include "plugin/imgbasic/col_reduce.h"

#include "plugin/imgbasic/dialogs.h"

namespace imgbasic {

int ReduceColorImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return RunOptionsDialog(*this) ? 1 : -1;
}

bool ReduceColorImageProcess::BatchDispose() {
    return true;
}

int ReduceColorImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (reference != nullptr) {
        if (const auto* earlier = dynamic_cast<const ReduceColorImageProcess*>(reference)) {
            ReduceColor = earlier->ReduceColor;
            DitherType = earlier->DitherType;
            SharePalette = earlier->SharePalette;
            GraduateReduce = earlier->GraduateReduce;
        }
        return ApplyNow();
    }
    return RunOptionsDialog(*this) ? 1 : -1;
}

int ReduceColorImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                                   const RGBA16* merged, uint64_t /*unused1*/, uint64_t /*unused2*/,
                                   uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool ReduceColorImageProcess::Execute(const ExecuteArgs& /*args*/) {
    return true;
}

bool ReduceColorImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                           double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool ReduceColorImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
