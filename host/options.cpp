#include "host/options.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

std::string OptionNames(std::string_view filter) {
    std::string names;
    for (const FilterOption& option : OptionsOf(filter)) {
        names.append(names.empty() ? "" : ", ").append(option.name);
    }
    return names.empty() ? "this filter has no options" : "the options are " + names;
}

std::string PossibleValues(const FilterOption& option) {
    return option.kind == OptionKind::Switch ? "0, 1, true or false"
                                             : "a whole number, " + RangeText(option);
}

}  // namespace

std::span<const FilterOption> OptionsOf(std::string_view filter) {
    const auto* row = std::ranges::find(kFilterRows, filter, &FilterRow::name);
    return row != kFilterRows.end() ? row->options : std::span<const FilterOption>();
}

const FilterOption* FindOption(std::string_view filter, std::string_view name) {
    for (const FilterOption& option : OptionsOf(filter)) {
        if (option.name == name) {
            return &option;
        }
    }
    return nullptr;
}

OptionValue Option(std::string_view filter, std::string_view name, int32_t value) {
    return {FindOption(filter, name), value};
}

OptionValue ParseOption(std::string_view filter, const std::string& text) {
    const size_t equals = text.find('=');
    const FilterOption* option = FindOption(filter, text.substr(0, equals));
    if (equals == std::string::npos || option == nullptr) {
        throw std::invalid_argument("'" + text + "' sets nothing; write Field=value, " +
                                    OptionNames(filter));
    }
    const std::string value = text.substr(equals + 1);
    if (option->kind == OptionKind::Switch && (value == "true" || value == "false")) {
        return {option, value == "true"};
    }
    int32_t number = 0;
    const auto [end, fault] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (fault != std::errc() || end != value.data() + value.size() || !option->Allows(number)) {
        throw std::invalid_argument("'" + text + "': the value must be " + PossibleValues(*option));
    }
    return {option, number};
}

std::string RangeText(const FilterOption& option) {
    return std::to_string(option.least) + " to " + std::to_string(option.most);
}

std::vector<OptionValue> OptionsToRepeat(std::string_view filter, const ImageProcess& object) {
    std::vector<OptionValue> values;
    for (const FilterOption& option : OptionsOf(filter)) {
        values.push_back({&option, option.get(object)});
    }
    const bool followsRatio = std::ranges::any_of(values, [](const OptionValue& set) {
        return set.option->name == std::string_view("RatioSize") && set.value != 0;
    });
    if (followsRatio) {
        std::erase_if(values, [](const OptionValue& set) {
            return set.option->name == std::string_view("newWidth") ||
                   set.option->name == std::string_view("newHeight");
        });
    }
    return values;
}

std::vector<OptionValue> ExchangeOptions(ImageProcess& object,
                                         std::span<const OptionValue> values) {
    std::vector<OptionValue> before;
    for (const auto& [option, value] : values) {
        // In front, since an option that is set twice must end as it began.
        before.insert(before.begin(), {option, option->get(object)});
        option->set(object, value);
    }
    return before;
}

}  // namespace imgbasic::host
