#include "plugin/imgbasic/chan_merge.h"

namespace imgbasic {

int ChannelMergeImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return 0;
}

bool ChannelMergeImageProcess::BatchDispose() {
    return false;
}

int ChannelMergeImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    return ApplyNow();
}

int ChannelMergeImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                                    const RGBA16* merged, uint64_t /*unused1*/,
                                    uint64_t /*unused2*/, uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool ChannelMergeImageProcess::Execute(const ExecuteArgs& /*args*/) {
    return true;
}

bool ChannelMergeImageProcess::AdjustLocate(int /*index*/, int /*layer*/, int /*subLayer*/,
                                            double* /*x*/, double* /*y*/) {
    return true;
}

bool ChannelMergeImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
