#include "plugin/imgbasic/dialogs/dialog_rules.h"

#include <algorithm>

#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/dialogs/resource.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {
namespace {

int32_t Read(const DialogOption& option) {
    return std::visit([](const auto* field) { return static_cast<int32_t>(*field); }, option.field);
}

void Write(const DialogOption& option, int32_t value) {
    if (auto* const* flag = std::get_if<bool*>(&option.field)) {
        **flag = value != 0;
    } else {
        *std::get<int32_t*>(option.field) = value;
    }
}

}  // namespace

std::vector<DialogOption> OptionsOf(NegaImageProcess& process) {
    return {{.control = IDC_TARGET_TYPE, .field = &process.TargetType}};
}

std::vector<DialogOption> OptionsOf(GrayScaleImageProcess& process) {
    return {{.control = IDC_CALC_MODE, .field = &process.CalcMode},
            {.control = IDC_COLOR_MODE, .field = &process.ColorMode},
            {.control = IDC_TARGET_TYPE, .field = &process.TargetType}};
}

std::vector<DialogOption> OptionsOf(MonoImageProcess& process) {
    return {{IDC_THRESHOLD_SLIDER, &process.Threshold, 1, 255, 0},
            {IDC_TARGET_TYPE, &process.TargetType, 0, 2}};
}

std::vector<DialogOption> OptionsOf(ReduceColorImageProcess& process) {
    return {{IDC_COLORS_SLIDER, &process.ReduceColor, 1, 256, 0},
            {IDC_DITHER_TYPE, &process.DitherType, 0, 3, -1, 3},
            {IDC_TARGET_TYPE, &process.TargetType, 0, 2},
            {.control = IDC_SHARE_PALETTE, .field = &process.SharePalette},
            {.control = IDC_GRADUATE_REDUCE, .field = &process.GraduateReduce}};
}

DialogEnd CarryOut(Press press, std::span<DialogOption> options, std::span<const int32_t> shown,
                   ApplyCallback apply) {
    bool changed = false;
    for (size_t i = 0; i < options.size(); ++i) {
        if (shown[i] < options[i].low || shown[i] > options[i].high) {
            return DialogEnd::StaysOpen;
        }
        changed |= shown[i] != options[i].sent;
    }
    std::vector<int32_t> before;
    for (size_t i = 0; i < options.size(); ++i) {
        before.push_back(Read(options[i]));
        Write(options[i], shown[i]);
    }
    if (changed) {
        if (apply != nullptr && !apply()) {
            return DialogEnd::Cancelled;
        }
        for (size_t i = 0; i < options.size(); ++i) {
            options[i].sent = shown[i];
        }
    }
    if (press == Press::Execute) {
        return DialogEnd::Confirmed;
    }
    for (size_t i = 0; i < options.size(); ++i) {
        Write(options[i], before[i]);
    }
    return DialogEnd::StaysOpen;
}

ScalingOptions::ScalingOptions(const ScalingImageProcess& process)
    : sourceWidth(std::max(process.width, 1)),
      sourceHeight(std::max(process.height, 1)),
      pixelWidth(std::min(sourceWidth, ScalingImageProcess::kMaxSize)),
      pixelHeight(std::min(sourceHeight, ScalingImageProcess::kMaxSize)),
      ratioMode(process.RatioSize),
      ratioWidth(process.RatioWidth),
      ratioHeight(process.RatioHeight),
      fixRatio(process.FixRatio),
      interType(process.InterType),
      boundaryType(process.BoundaryType),
      boundAlpha(process.BoundAlpha),
      changeBrush(process.ChangeBrush) {
}

void ScalingOptions::StoreIn(ScalingImageProcess& process) const {
    process.RatioSize = ratioMode;
    if (ratioMode) {
        const ValueRange widths = RatioRange(sourceWidth);
        const ValueRange heights = RatioRange(sourceHeight);
        process.RatioWidth = std::clamp(ratioWidth, widths.low, widths.high);
        process.RatioHeight = std::clamp(ratioHeight, heights.low, heights.high);
        process.SetSizeFromRatio();
    } else {
        process.newWidth = pixelWidth;
        process.newHeight = pixelHeight;
    }
    process.FixRatio = fixRatio;
    process.InterType = interType;
    process.BoundaryType = boundaryType;
    process.BoundAlpha = boundAlpha;
    process.ChangeBrush = changeBrush;
}

ValueRange RatioRange(int32_t source) {
    constexpr int32_t kPercent = 100;
    constexpr int32_t kLargest = kPercent * ScalingImageProcess::kMaxSize;
    const int64_t side = std::max(source, 1);
    return {static_cast<int32_t>((kPercent + side - 1) / side),
            static_cast<int32_t>((kLargest + side - 1) / side)};
}

int32_t LinkedValue(int32_t value, int32_t ownReference, int32_t partnerReference) {
    const int64_t linked =
        int64_t{value} * std::max(partnerReference, 1) / std::max(ownReference, 1);
    return static_cast<int32_t>(std::clamp<int64_t>(linked, INT32_MIN, INT32_MAX));
}

}  // namespace imgbasic
