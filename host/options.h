#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/imgbasic/process.h"

namespace imgbasic::host {

/// One public field of a filter's objects that the user may set.
struct OptionField {
    std::string_view filter;
    std::string_view name;  ///< the field's name, which is also that of its stored setting
    bool isSwitch;          ///< holds 0 or 1
    int32_t (*get)(const ImageProcess& object);
    void (*set)(ImageProcess& object, int32_t value);
};

struct OptionValue {
    const OptionField* field;
    int32_t value;
};

/// Every field of `filter`'s objects; empty for an unknown filter.
std::span<const OptionField> OptionFields(std::string_view filter);

/// Null when the filter has no such field.
const OptionField* FindOption(std::string_view filter, std::string_view name);

/// One value for a field that is known to exist.
OptionValue Option(std::string_view filter, std::string_view name, int32_t value);

/// Reads "Field=value", the value a number or, for a switch, also true or false. Throws
/// std::invalid_argument with a message that says what is possible.
OptionValue ParseOption(std::string_view filter, const std::string& text);

/// The values of all fields of an object of `filter`.
std::vector<OptionValue> ReadOptions(std::string_view filter, const ImageProcess& object);

/// Sets the fields in order and returns what they held before, so that setting those again undoes
/// it.
std::vector<OptionValue> ExchangeOptions(ImageProcess& object, std::span<const OptionValue> values);

}  // namespace imgbasic::host
