#include "plugin/imgbasic/process.h"

namespace imgbasic {

void ImageProcess::AdjustScale(int /*unused1*/, int /*unused2*/, double* /*scaleX*/,
                               double* /*scaleY*/) {
}

int ImageProcess::KeepMergedImage(const RGBA16* merged) {
    mergedImage = merged;
    return 1;
}

int ImageProcess::ApplyNow() const {
    return applyCallback != nullptr && applyCallback() ? 1 : 0;
}

}  // namespace imgbasic
