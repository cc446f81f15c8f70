#include <algorithm>
#include <climits>
#include <iterator>
#include <vector>

#include "fuzz/checks.h"
#include "plugin/imgbasic/dialogs/dialog_rules.h"
#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic {
namespace {

struct Steps {
    std::span<const uint8_t> left;

    /// 0 once there are no more.
    int32_t Byte() {
        const int32_t byte = left.empty() ? 0 : left.front();
        left = left.subspan(left.empty() ? 0 : 1);
        return byte;
    }

    int32_t Number() {
        static constexpr int32_t kFar[] = {INT_MIN, INT_MAX, -1, 512, 8191, 8192, 9000, 819200};
        const int32_t byte = Byte();
        return byte < 240 ? byte : kFar[byte % 8];
    }
};

struct Host {
    static inline bool agrees = true;
    static inline int calls = 0;
    static bool Apply() {
        ++calls;
        return agrees;
    }
};

std::string CheckPreview(Steps& steps) {
    const auto& row = kFilterRows[static_cast<size_t>(steps.Byte()) % kFilterRows.size()];
    const auto process = CreateFilter(row);
    const auto held = [&] {
        std::vector<int32_t> values;
        for (const FilterOption& option : row.options) {
            values.push_back(option.get(*process));
        }
        return values;
    };
    process->applyCallback = Host::Apply;
    PreviewedOptions options(*process, row);
    std::vector<int32_t> sent;
    std::ranges::transform(row.options, std::back_inserter(sent), &FilterOption::NoValue);
    while (!steps.left.empty() && row.dialog != 0) {
        std::vector<int32_t> shown;
        bool isAllowed = true;
        for (const FilterOption& option : row.options) {
            const int32_t number = steps.Number();
            shown.push_back(option.kind == OptionKind::Switch ? number & 1 : number);
            isAllowed = isAllowed && (!row.dialogChecks || option.Allows(shown.back()));
        }
        const Press press = steps.Byte() % 2 == 0 ? Press::Preview : Press::Execute;
        Host::agrees = steps.Byte() % 4 != 0;
        Host::calls = 0;
        const std::vector<int32_t> before = held();
        const DialogEnd end = options.CarryOut(press, shown);
        const bool asks = isAllowed && shown != sent;
        const bool confirms = isAllowed && press == Press::Execute;
        const DialogEnd expected = asks && !Host::agrees ? DialogEnd::Cancelled
                                   : confirms            ? DialogEnd::Confirmed
                                                         : DialogEnd::StaysOpen;
        if (end != expected || Host::calls != (asks ? 1 : 0)) {
            return "other end, or the host asked too often or not at all";
        }
        if (held() != (end == DialogEnd::StaysOpen ? before : shown)) {
            return "other options in the object";
        }
        sent = asks && Host::agrees ? shown : sent;
    }
    return "";
}

bool IsPercentage(int32_t result, int32_t ratio, int32_t side) {
    const int64_t exact = int64_t{std::max(side, 0)} * ratio / 100;
    const ValueRange ratios = RatioRange(side);
    return ratio >= ratios.low && ratio <= ratios.high &&
           result == std::clamp<int64_t>(exact, kSide.least, kSide.most);
}

std::string CheckScaling(Steps& steps) {
    while (!steps.left.empty()) {
        ScalingImageProcess process;
        process.width = steps.Number();
        process.height = steps.Number();
        ScalingOptions options(process);
        for (const FilterOption& option : kScalingOptions) {
            const int32_t number = steps.Number();
            option.set(options.edited, std::clamp(number, option.least, option.most));
        }
        options.StoreIn(process);
        const ScalingImageProcess& edited = options.edited;
        if (edited.RatioSize
                ? !IsPercentage(process.newWidth, process.RatioWidth, process.width) ||
                      !IsPercentage(process.newHeight, process.RatioHeight, process.height)
                : process.newWidth != edited.newWidth || process.newHeight != edited.newHeight ||
                      process.RatioWidth != kRatio.initial ||
                      process.RatioHeight != kRatio.initial) {
            return "other size or percentages";
        }
        const int64_t own = std::max(edited.newWidth, 1);
        const int64_t partner = std::max(edited.RatioHeight, 1);
        const int32_t value = steps.Number();
        const int64_t linked = LinkedValue(value, edited.newWidth, edited.RatioHeight);
        const bool isCut = linked == INT_MIN || linked == INT_MAX;
        if (!isCut && std::abs(linked * own - value * partner) >= own) {
            return "the proportion is lost";
        }
    }
    return "";
}

}  // namespace

std::string CheckDialogRules(std::span<const uint8_t> data) {
    Steps steps{data};
    return steps.Byte() % 2 == 0 ? CheckPreview(steps) : CheckScaling(steps);
}

}  // namespace imgbasic
