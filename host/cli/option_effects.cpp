#include "host/cli/option_effects.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <string_view>

#include "host/cli/stored_options.h"

namespace imgbasic::host {
namespace {

/// A flag that has an effect only when an option has a certain value.
struct Need {
    std::string_view filter;
    const char* flag;
    std::string_view option;
    int32_t value;
    const char* asked;     ///< how the command line asks for that value
    bool isStored = true;  ///< --remember keeps what the flag says, for runs where it counts
};

constexpr int32_t kTintDraw = 7;
constexpr int32_t kTintBack = 8;
constexpr int32_t kBilinear = 2;

constexpr Need kNeeds[] = {
    {"gray", "--draw-color", "ColorMode", kTintDraw, "--tint draw", false},
    {"gray", "--back-color", "ColorMode", kTintBack, "--tint back", false},
    {"col_reduce", "--share-palette", "TargetType", AllLayers, "--target all"},
    {"scaling", "--boundary", "InterType", kBilinear, "--interp bilinear"},
    {"scaling", "--bound-alpha", "InterType", kBilinear, "--interp bilinear"},
    {"scaling", "--no-bound-alpha", "InterType", kBilinear, "--interp bilinear"},
};

/// The value that a run will find, from the command line, the store or the default.
int32_t EffectiveValue(const FilterCommand& command, std::string_view name) {
    const FilterOption& option = *FindOption(command.filter, name);
    int32_t value = option.initial;
    std::vector<OptionValue> options;
    if (command.remembered) {
        options = StoredOptions(command.filter);
    }
    options.insert(options.end(), command.options.begin(), command.options.end());
    for (const OptionValue& given : options) {
        value = given.option == &option ? given.value : value;
    }
    if (name == "TargetType" && (command.target || command.layer)) {
        value = command.target.value_or(CurrentLayer);
    }
    return value;
}

bool IsGiven(const CLI::App& app, const char* flag) {
    const CLI::Option* const option = app.get_option_no_throw(flag);
    return option != nullptr && option->count() > 0;
}

}  // namespace

std::vector<std::string> IneffectiveFlags(const CLI::App& app, const FilterCommand& command) {
    std::vector<std::string> flags;
    for (const Need& need : kNeeds) {
        if (command.filter == need.filter && IsGiven(app, need.flag) &&
            !(need.isStored && command.remember) &&
            EffectiveValue(command, need.option) != need.value) {
            flags.push_back(std::string(need.flag) + " has no effect without " + need.asked);
        }
    }
    if (IsGiven(app, "--no-change-brush") && !command.remember) {
        flags.emplace_back(
            "--no-change-brush has no effect here, where there are no brushes (--remember keeps it "
            "for other hosts)");
    }
    if (IsGiven(app, "--layer") && command.target.value_or(CurrentLayer) != CurrentLayer) {
        flags.emplace_back("--layer has no effect with another --target than current");
    }
    return flags;
}

}  // namespace imgbasic::host
