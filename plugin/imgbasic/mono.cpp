#include "plugin/imgbasic/mono.h"

#include "lib/image/point/mono.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/target.h"

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

bool MonoImageProcess::Execute(const ExecuteArgs& args) {
    // A threshold no dialog would give wraps here, as the shift defines it.
    const int32_t level = Threshold << 8;
    return ExecuteOnTarget(*this, args, MergedResult::Announced,
                           [level](RGBA16* dst, const RGBA16* src, size_t count, Store store) {
                               ToTwoLevels(dst, src, count, level, store);
                           });
}

bool MonoImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                    double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool MonoImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
