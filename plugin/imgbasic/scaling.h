#pragma once

#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// "scaling": another image size, by percentage or in pixels.
/// Options: RatioSize, RatioWidth, RatioHeight, FixRatio, InterType, BoundaryType, BoundAlpha,
/// ChangeBrush. Every layer is scaled as a whole.
class ScalingImageProcess final : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    bool Execute(const ExecuteArgs& args) override;
    /// The factors by which the size changes, for brushes; left alone without ChangeBrush.
    void AdjustScale(int unused1, int unused2, double* scaleX, double* scaleY) override;
    /// Moves a point of the source to its place in the result; true.
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;

    /// The size of the result in pixels: newWidth x newHeight, or the source's while they are not
    /// set.
    int32_t ResultWidth() const { return newWidth != 0 ? newWidth : width; }
    int32_t ResultHeight() const { return newHeight != 0 ? newHeight : height; }

    /// Sets the new size to the percentages of the source's, within 1 to kMaxSize.
    void SetSizeFromRatio();

    static constexpr int32_t kMaxSize = 8192;  ///< of a result, pixels in each direction

    int32_t newWidth = 0;  ///< size of the result, pixels; 0: not set
    int32_t newHeight = 0;
    bool RatioSize = false;     ///< the size is given by the percentages
    int32_t RatioWidth = 100;   ///< percent
    int32_t RatioHeight = 100;  ///< percent
    bool FixRatio = true;       ///< keep the aspect ratio while the size is edited
    int32_t InterType = 2;      ///< 0 nearest, 1 pixel average, 2 bilinear
    int32_t BoundaryType = 0;   ///< bilinear: 0 clip, 1 clamp, 2 repeat
    bool BoundAlpha = true;     ///< bilinear with clamp or repeat: fade alpha at the border
    bool ChangeBrush = true;    ///< report the scale, so that brushes follow
    bool skipDialog = false;    ///< compute the size from the percentages without a dialog
};

}  // namespace imgbasic
