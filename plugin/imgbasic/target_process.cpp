#include "plugin/imgbasic/target_process.h"

#include <typeinfo>

#include "plugin/imgbasic/dialogs.h"

namespace imgbasic {

int TargetImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    if (Row().batch == BatchUse::Unasked) {
        return 1;
    }
    return RunOptionsDialog(*this, Row());
}

bool TargetImageProcess::BatchDispose() {
    return true;
}

int TargetImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    if (reference == nullptr) {
        return RunOptionsDialog(*this, Row());
    }
    if (Row().repeatsOptions) {
        TakeOptionsFrom(*reference);
    }
    return ApplyNow();
}

void TargetImageProcess::TakeOptionsFrom(const ImageProcess& earlier) {
    // The host may hand in whatever it used last.
    if (typeid(earlier) != typeid(*this)) {
        return;
    }
    const int32_t ownTarget = TargetType;
    for (const FilterOption& option : Row().options) {
        option.set(*this, option.get(earlier));
    }
    TargetType = ownTarget;
}

int TargetImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                              const RGBA16* merged, uint64_t /*unused1*/, uint64_t /*unused2*/,
                              uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool TargetImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer, double* /*x*/,
                                      double* /*y*/) {
    return TargetType == CurrentLayer && (layer != curLayer || subLayer != curSubLayer);
}

bool TargetImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
