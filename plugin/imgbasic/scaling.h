#pragma once

#include "plugin/imgbasic/filter_row.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// One side of a result, pixels; none is set at first.
inline constexpr NumberRange kSide{.least = 1, .most = 8192, .initial = 0};

/// Percent; the largest makes one pixel the longest side.
inline constexpr NumberRange kRatio{.least = 1, .most = 100 * kSide.most, .initial = 100};

/// "scaling": another image size, by percentage or in pixels. Every layer is scaled as a whole.
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

    /// Sets the new size to the percentages of the source's, within kSide.
    void SetSizeFromRatio();

    int32_t newWidth = kSide.initial;  ///< size of the result, pixels; 0: not set
    int32_t newHeight = kSide.initial;
    bool RatioSize = false;  ///< the size is given by the percentages
    int32_t RatioWidth = kRatio.initial;
    int32_t RatioHeight = kRatio.initial;
    bool FixRatio = true;      ///< keep the aspect ratio while the size is edited
    int32_t InterType = 2;     ///< kInterTypes
    int32_t BoundaryType = 0;  ///< of bilinear: kBoundaryTypes
    bool BoundAlpha = true;    ///< bilinear with clamp or repeat: fade alpha at the border
    bool ChangeBrush = true;   ///< report the scale, so that brushes follow
    bool skipDialog = false;   ///< compute the size from the percentages without a dialog
};

inline constexpr Text kInterTypes[] = {
    {"ニアレスト", "\x83j\x83\x41\x83\x8C\x83X\x83g"},
    {"ピクセル平均", "\x83s\x83N\x83Z\x83\x8B\x95\xBD\x8B\xCF"},
    {"バイリニア", "\x83o\x83\x43\x83\x8A\x83j\x83\x41"},
};

inline constexpr Text kBoundaryTypes[] = {
    {"クリップ", "\x83N\x83\x8A\x83\x62\x83v"},
    {"クランプ", "\x83N\x83\x89\x83\x93\x83v"},
    {"リピート", "\x83\x8A\x83s\x81[\x83g"},
};

inline constexpr FilterOption kScalingOptions[] = {
    SwitchOption<&ScalingImageProcess::RatioSize>("RatioSize", false, IDC_BY_PIXELS),
    NumberOption<&ScalingImageProcess::newWidth>("newWidth", kSide,
                                                 {IDC_WIDTH_SPIN, IDC_WIDTH_EDIT})
        .NotStored(),
    NumberOption<&ScalingImageProcess::newHeight>("newHeight", kSide,
                                                  {IDC_HEIGHT_SPIN, IDC_HEIGHT_EDIT})
        .NotStored(),
    NumberOption<&ScalingImageProcess::RatioWidth>("RatioWidth", kRatio,
                                                   {IDC_RATIO_WIDTH_SPIN, IDC_RATIO_WIDTH_EDIT}),
    NumberOption<&ScalingImageProcess::RatioHeight>("RatioHeight", kRatio,
                                                    {IDC_RATIO_HEIGHT_SPIN, IDC_RATIO_HEIGHT_EDIT}),
    SwitchOption<&ScalingImageProcess::FixRatio>("FixRatio", true, IDC_FIX_RATIO),
    ChoiceOption<&ScalingImageProcess::InterType>("InterType", kInterTypes, 2, IDC_INTER_TYPE),
    ChoiceOption<&ScalingImageProcess::BoundaryType>("BoundaryType", kBoundaryTypes, 0,
                                                     IDC_BOUNDARY_TYPE),
    SwitchOption<&ScalingImageProcess::BoundAlpha>("BoundAlpha", true, IDC_BOUND_ALPHA),
    SwitchOption<&ScalingImageProcess::ChangeBrush>("ChangeBrush", true, IDC_CHANGE_BRUSH),
};

// It has its own way of running without a dialog (skipDialog), which needs no reference.
template <>
inline constexpr FilterRow kRow<ScalingImageProcess>{
    .name = "scaling",
    .displayName = {"拡大縮小", "\x8Ag\x91\xE5\x8Fk\x8F\xAC"},
    .changesSize = true,
    .batch = BatchUse::Dialog,
    .loading = Loading::Strict,
    .dialog = IDD_SCALING,
    .options = kScalingOptions,
};

}  // namespace imgbasic
