#pragma once

#include <memory>

#include "lib/image/palette/color_rows.h"
#include "lib/image/palette/reduce_palette.h"
#include "plugin/imgbasic/target_process.h"

namespace imgbasic {

inline constexpr NumberRange kReduceColor{.least = 1, .most = 256, .initial = 16};

/// "col_reduce": at most ReduceColor colours, chosen from the image, with optional dithering. With
/// SharePalette every visit of the topmost item with a rectangle chooses the palette anew from its
/// pixels, also when that item is not the target, and all mapping until Dispose uses it.
class ReduceColorImageProcess final : public TargetImageProcess {
  public:
    bool Execute(const ExecuteArgs& args) override;
    bool Dispose() override;

    int32_t ReduceColor = kReduceColor.initial;  ///< colours of the result
    int32_t DitherType = 3;                      ///< kDitherTypes
    bool SharePalette = false;                   ///< the topmost layer's palette serves every layer
    bool GraduateReduce = false;                 ///< halve the colours step by step from 256

  protected:
    const FilterRow& Row() const override;

  private:
    int32_t ColorLimit() const;
    /// Chooses the palette from the visited item's pixels; true when there are none.
    bool BuildSharedPalette(const ExecuteArgs& args);
    bool ChoosePalette(ReducePalette& palette, ColorRows& rows) const;
    bool MapAndWrite(RGBA16* dst, PixelRect rect, ColorRows& rows) const;

    std::unique_ptr<ReducePalette> sharedPalette_;
};

inline constexpr Text kDitherTypes[] = {
    {"なし", "\x82\xC8\x82\xB5"},
    {"パターン", "\x83p\x83^\x81[\x83\x93"},
    {"誤差拡散(小)", "\x8C\xEB\x8D\xB7\x8Ag\x8EU(\x8F\xAC)"},
    {"誤差拡散(大)", "\x8C\xEB\x8D\xB7\x8Ag\x8EU(\x91\xE5)"},
};

inline constexpr FilterOption kReduceColorOptions[] = {
    NumberOption<&ReduceColorImageProcess::ReduceColor>(
        "ReduceColor", kReduceColor, {IDC_COLORS_SLIDER, IDC_COLORS_EDIT, IDC_COLORS_SPIN}),
    ChoiceOption<&ReduceColorImageProcess::DitherType>("DitherType", kDitherTypes, 3,
                                                       IDC_DITHER_TYPE),
    TargetOption(),
    SwitchOption<&ReduceColorImageProcess::SharePalette>("SharePalette", false, IDC_SHARE_PALETTE),
    SwitchOption<&ReduceColorImageProcess::GraduateReduce>("GraduateReduce", false,
                                                           IDC_GRADUATE_REDUCE),
};

template <>
inline constexpr FilterRow kRow<ReduceColorImageProcess>{
    .name = "col_reduce",
    .displayName = {"減色", "\x8C\xB8\x90\x46"},
    .batch = BatchUse::Dialog,
    .repeatsOptions = true,
    .dialog = IDD_REDUCE_COLOR,
    .dialogChecks = true,
    .options = kReduceColorOptions,
};

}  // namespace imgbasic
