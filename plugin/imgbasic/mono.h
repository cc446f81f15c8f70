#pragma once

#include "plugin/imgbasic/target_process.h"

namespace imgbasic {

inline constexpr NumberRange kThreshold{.least = 1, .most = 255, .initial = 128};

/// "mono": black or white for every pixel, by its red channel seen over white.
class MonoImageProcess final : public TargetImageProcess {
  public:
    bool Execute(const ExecuteArgs& args) override;

    int32_t Threshold = kThreshold.initial;  ///< 8-bit level from which a pixel is white

  protected:
    const FilterRow& Row() const override;
};

inline constexpr FilterOption kMonoOptions[] = {
    NumberOption<&MonoImageProcess::Threshold>(
        "Threshold", kThreshold, {IDC_THRESHOLD_SLIDER, IDC_THRESHOLD_EDIT, IDC_THRESHOLD_SPIN}),
    TargetOption(),
};

template <>
inline constexpr FilterRow kRow<MonoImageProcess>{
    .name = "mono",
    .displayName = {"2階調化", "2\x8AK\x92\xB2\x89\xBB"},
    .batch = BatchUse::Dialog,
    .repeatsOptions = true,
    .dialog = IDD_MONO,
    .dialogChecks = true,
    .options = kMonoOptions,
};

}  // namespace imgbasic
