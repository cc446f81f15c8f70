#include "plugin/imgbasic/chan_decomp.h"

namespace imgbasic {

int ChannelDecomposeImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return 0;
}

bool ChannelDecomposeImageProcess::BatchDispose() {
    return false;
}

int ChannelDecomposeImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    startLayer = -1;
    startSubLayer = -1;
    finished = false;
    return ApplyNow();
}

int ChannelDecomposeImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/,
                                        uint32_t* /*newHeight*/, const RGBA16* merged,
                                        uint64_t /*unused1*/, uint64_t /*unused2*/,
                                        uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool ChannelDecomposeImageProcess::Execute(const ExecuteArgs& /*args*/) {
    return true;
}

bool ChannelDecomposeImageProcess::AdjustLocate(int /*index*/, int layer, int subLayer,
                                                double* /*x*/, double* /*y*/) {
    return IsOutsideTarget(layer, subLayer);
}

bool ChannelDecomposeImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
