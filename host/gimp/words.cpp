#include "host/gimp/words.h"

#include <glib.h>

#include <algorithm>
#include <span>
#include <string_view>

#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

bool isJapanese = false;

const char* Pick(const char* english, const char* japanese) {
    return isJapanese ? japanese : english;
}

/// In the order of kFilterRows.
constexpr const char* kTitles[] = {"Greyscale",      "Two Levels",     "Invert Tones",
                                   "Split Channels", "Merge Channels", "Reduce Colours",
                                   "Scale"};
static_assert(std::size(kTitles) == std::size(kFilterRows));

struct OptionLabel {
    std::string_view option;
    const char* english;
    const char* japanese;
    std::span<const char* const> choices{};  ///< English, in the order of the values
};

constexpr const char* kMethods[] = {"Mean lightness",
                                    "Mean of RGB",
                                    "NTSC luma (Y)",
                                    "Value (V)",
                                    "Red channel",
                                    "Green channel",
                                    "Blue channel",
                                    "Saturation (S)",
                                    "Difference of blue (Cb)",
                                    "Difference of red (Cr)"};
constexpr const char* kTints[] = {"White",
                                  "Red",
                                  "Green",
                                  "Blue",
                                  "Magenta",
                                  "Cyan",
                                  "Yellow",
                                  "Foreground colour",
                                  "Background colour"};
constexpr const char* kTargets[] = {"Merged image", "All layers", "Current layer"};
constexpr const char* kDithers[] = {"None", "Pattern", "Error diffusion (small)",
                                    "Error diffusion (large)"};
constexpr const char* kInterpolations[] = {"Nearest", "Mean of pixels", "Bilinear"};
constexpr const char* kBoundaries[] = {"Clip", "Clamp", "Repeat"};

constexpr OptionLabel kOptions[] = {
    {"CalcMode", "Method", "方法", kMethods},
    {"ColorMode", "Tint", "着色", kTints},
    {"TargetType", "Target", "対象", kTargets},
    {"Threshold", "Threshold", "しきい値"},
    {"ReduceColor", "Colours", "色数"},
    {"DitherType", "Dithering", "ディザリング", kDithers},
    {"SharePalette", "Share the palette of the topmost layer", "最上位レイヤーのパレットを共有"},
    {"GraduateReduce", "Halve the colours step by step from 256", "256色から徐々に減色"},
    {"RatioSize", "Size by the percentages", "比率で指定"},
    {"newWidth", "Width", "幅"},
    {"newHeight", "Height", "高さ"},
    {"RatioWidth", "Percent of the width", "幅の比率"},
    {"RatioHeight", "Percent of the height", "高さの比率"},
    {"FixRatio", "Keep the shape while the size is edited", "縦横比を固定"},
    {"InterType", "Interpolation", "補間処理", kInterpolations},
    {"BoundaryType", "Beyond the border", "境界処理", kBoundaries},
    {"BoundAlpha", "Fade out at the border", "境界の不透明度をぼかす"},
    {"ChangeBrush", "Scale brushes too, which GIMP does not", "ブラシサイズを変更 (GIMPでは無効)"},
};

consteval bool AllHaveLabels() {
    return std::ranges::all_of(kFilterRows, [](const FilterRow& filter) {
        return std::ranges::all_of(filter.options, [](const FilterOption& option) {
            return std::ranges::any_of(kOptions, [&](const OptionLabel& labels) {
                return labels.option == option.name &&
                       labels.choices.size() == option.choices.size();
            });
        });
    });
}
static_assert(AllHaveLabels());

const OptionLabel& LabelsOf(const FilterOption& option) {
    return *std::ranges::find(kOptions, std::string_view(option.name), &OptionLabel::option);
}

}  // namespace

void ChooseLanguage() {
    isJapanese = std::string_view(g_get_language_names()[0]).starts_with("ja");
}

const char* TitleOf(const FilterRow& filter) {
    return Pick(kTitles[&filter - kFilterRows.data()], filter.displayName.utf8);
}

const char* LabelOf(const FilterOption& option) {
    const OptionLabel& labels = LabelsOf(option);
    return Pick(labels.english, labels.japanese);
}

const char* ChoiceLabelOf(const FilterOption& option, size_t choice) {
    return Pick(LabelsOf(option).choices[choice], option.choices[choice].utf8);
}

const char* TextOf(Label label) {
    return label == Label::Run ? Pick("_Run", "実行(_R)") : Pick("_Preview", "プレビュー(_P)");
}

const char* ChannelsNeeded() {
    return Pick(
        "merging needs the four layers [R], [G], [B] and [A] of one name, one of each and beside "
        "each other, [A] below the others; choose one of them or their group",
        "結合には同じ名前の[R]、[G]、[B]、[A]の4枚が同じ階層に1枚ずつ必要です。[A]を一番下に置き、"
        "そのうちの1枚かグループを選択してください。");
}

}  // namespace imgbasic::host
