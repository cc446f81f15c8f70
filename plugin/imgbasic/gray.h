#pragma once

#include "plugin/imgbasic/target_process.h"

namespace imgbasic {

/// "gray": one grey value for every pixel, seen over white, tinted by a colour.
class GrayScaleImageProcess final : public TargetImageProcess {
  public:
    bool Execute(const ExecuteArgs& args) override;

    int32_t CalcMode = 0;   ///< how the grey value is computed: kCalcModes
    int32_t ColorMode = 0;  ///< the tint: kColorModes

  protected:
    const FilterRow& Row() const override;
};

inline constexpr Text kCalcModes[] = {
    {"明度平均", "\x96\xBE\x93x\x95\xBD\x8B\xCF"},
    {"RGB平均", "RGB\x95\xBD\x8B\xCF"},
    {"NTSC加重平均(Y)", "NTSC\x89\xC1\x8F\x64\x95\xBD\x8B\xCF(Y)"},
    {"明度(V)", "\x96\xBE\x93x(V)"},
    {"赤チャンネル", "\x90\xD4\x83`\x83\x83\x83\x93\x83l\x83\x8B"},
    {"緑チャンネル", "\x97\xCE\x83`\x83\x83\x83\x93\x83l\x83\x8B"},
    {"青チャンネル", "\x90\xC2\x83`\x83\x83\x83\x93\x83l\x83\x8B"},
    {"彩度(S)", "\x8D\xCA\x93x(S)"},
    {"色差・青(Cb)", "\x90\x46\x8D\xB7\x81\x45\x90\xC2(Cb)"},
    {"色差・赤(Cr)", "\x90\x46\x8D\xB7\x81\x45\x90\xD4(Cr)"},
};

inline constexpr Text kColorModes[] = {
    {"白", "\x94\x92"},
    {"赤", "\x90\xD4"},
    {"緑", "\x97\xCE"},
    {"青", "\x90\xC2"},
    {"マゼンタ", "\x83}\x83[\x83\x93\x83^"},
    {"シアン", "\x83V\x83\x41\x83\x93"},
    {"イエロー", "\x83\x43\x83G\x83\x8D\x81["},
    {"描画色", "\x95`\x89\xE6\x90\x46"},
    {"背景色", "\x94w\x8Ci\x90\x46"},
};

inline constexpr FilterOption kGrayOptions[] = {
    ChoiceOption<&GrayScaleImageProcess::CalcMode>("CalcMode", kCalcModes, 0, IDC_CALC_MODE),
    ChoiceOption<&GrayScaleImageProcess::ColorMode>("ColorMode", kColorModes, 0, IDC_COLOR_MODE),
    TargetOption(),
};

// A batch or a repeated run makes the plain grey of a new object: hosts offer both as the filter
// without its dialog.
template <>
inline constexpr FilterRow kRow<GrayScaleImageProcess>{
    .name = "gray",
    .displayName = {"グレースケール", "\x83O\x83\x8C\x81[\x83X\x83P\x81[\x83\x8B"},
    .batch = BatchUse::Unasked,
    .dialog = IDD_GRAY,
    .options = kGrayOptions,
};

}  // namespace imgbasic
