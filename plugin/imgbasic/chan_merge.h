#pragma once

#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// "chan_merge": four layers, one a channel, joined into one again. Runs in two phases: the first
/// collects every layer, the second merges. No options.
class ChannelMergeImageProcess final : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    bool Execute(const ExecuteArgs& args) override;
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;
};

}  // namespace imgbasic
