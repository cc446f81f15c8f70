#pragma once

#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// "gray": one gray value for every pixel, seen over white, tinted by a colour.
/// Options: CalcMode, ColorMode, TargetType.
class GrayScaleImageProcess final : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    bool Execute(const ExecuteArgs& args) override;
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;

    int32_t CalcMode = 0;   ///< how the gray value is computed, 0 to 9
    int32_t ColorMode = 0;  ///< the tint, 0 (white) to 8
};

}  // namespace imgbasic
