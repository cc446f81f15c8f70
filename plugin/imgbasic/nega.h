#pragma once

#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// "nega": the complement of every colour channel; alpha stays, and is not looked at.
/// Its one option is TargetType.
class NegaImageProcess final : public ImageProcess {
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
