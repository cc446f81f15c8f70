#pragma once

#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// "mono": black or white for every pixel, by its red channel seen over white.
/// Options: Threshold, TargetType.
class MonoImageProcess final : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    bool Execute(const ExecuteArgs& args) override;
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;

    int32_t Threshold = 128;  ///< 8-bit level from which a pixel is white, 1 to 255
};

}  // namespace imgbasic
