#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/imgbasic/filter_option.h"

namespace imgbasic::host {

/// One option of a filter with a value.
struct OptionValue {
    const FilterOption* option;
    int32_t value;
};

/// The options of the module's filter of this name; none for an unknown one.
std::span<const FilterOption> OptionsOf(std::string_view filter);

/// Null when the filter has no such option.
const FilterOption* FindOption(std::string_view filter, std::string_view name);

/// A value for an option that is known to exist.
OptionValue Option(std::string_view filter, std::string_view name, int32_t value);

/// Reads "Field=value", the value a number in the option's range or, for a switch, also true or
/// false. Throws std::invalid_argument with a message that says what is possible.
OptionValue ParseOption(std::string_view filter, const std::string& text);

/// "1 to 255".
std::string RangeText(const FilterOption& option);

/// The values of an object of `filter` without those that follow from others: what another object
/// needs to do the same to an image of its own.
std::vector<OptionValue> OptionsToRepeat(std::string_view filter, const ImageProcess& object);

/// Sets the options in order and returns what they were before, so that setting those again undoes
/// it.
std::vector<OptionValue> ExchangeOptions(ImageProcess& object, std::span<const OptionValue> values);

}  // namespace imgbasic::host
