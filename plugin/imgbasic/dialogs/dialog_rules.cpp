#include "plugin/imgbasic/dialogs/dialog_rules.h"

#include <algorithm>

namespace imgbasic {

PreviewedOptions::PreviewedOptions(ImageProcess& process, const FilterRow& filter)
    : process_(process), filter_(filter) {
    for (const FilterOption& option : filter.options) {
        sent_.push_back(option.NoValue());
    }
}

DialogEnd PreviewedOptions::CarryOut(Press press, std::span<const int32_t> shown) {
    const std::span<const FilterOption> options = filter_.options;
    for (size_t i = 0; i < options.size(); ++i) {
        if (filter_.dialogChecks && !options[i].Allows(shown[i])) {
            return DialogEnd::StaysOpen;
        }
    }
    std::vector<int32_t> before;
    for (size_t i = 0; i < options.size(); ++i) {
        before.push_back(options[i].get(process_));
        options[i].set(process_, shown[i]);
    }
    if (!std::ranges::equal(shown, sent_)) {
        if (process_.applyCallback != nullptr && !process_.applyCallback()) {
            return DialogEnd::Cancelled;
        }
        sent_.assign(shown.begin(), shown.end());
    }
    if (press == Press::Execute) {
        return DialogEnd::Confirmed;
    }
    for (size_t i = 0; i < options.size(); ++i) {
        options[i].set(process_, before[i]);
    }
    return DialogEnd::StaysOpen;
}

ScalingOptions::ScalingOptions(const ScalingImageProcess& process)
    : sourceWidth(std::max(process.width, 1)), sourceHeight(std::max(process.height, 1)) {
    for (const FilterOption& option : kScalingOptions) {
        option.set(edited, option.get(process));
    }
    edited.newWidth = std::min(sourceWidth, kSide.most);
    edited.newHeight = std::min(sourceHeight, kSide.most);
}

void ScalingOptions::StoreIn(ScalingImageProcess& process) const {
    const int32_t oldRatioWidth = process.RatioWidth;
    const int32_t oldRatioHeight = process.RatioHeight;
    for (const FilterOption& option : kScalingOptions) {
        option.set(process, option.get(edited));
    }
    if (edited.RatioSize) {
        const ValueRange widths = RatioRange(sourceWidth);
        const ValueRange heights = RatioRange(sourceHeight);
        process.RatioWidth = std::clamp(edited.RatioWidth, widths.low, widths.high);
        process.RatioHeight = std::clamp(edited.RatioHeight, heights.low, heights.high);
        process.SetSizeFromRatio();
    } else {
        process.RatioWidth = oldRatioWidth;
        process.RatioHeight = oldRatioHeight;
    }
}

ValueRange RatioRange(int32_t source) {
    const int64_t side = std::max(source, 1);
    return {static_cast<int32_t>((100 * kSide.least + side - 1) / side),
            static_cast<int32_t>((100 * kSide.most + side - 1) / side)};
}

int32_t LinkedValue(int32_t value, int32_t ownReference, int32_t partnerReference) {
    const int64_t linked =
        int64_t{value} * std::max(partnerReference, 1) / std::max(ownReference, 1);
    return static_cast<int32_t>(std::clamp<int64_t>(linked, INT32_MIN, INT32_MAX));
}

}  // namespace imgbasic
