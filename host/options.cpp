#include "host/options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <type_traits>

#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic::host {
namespace {

/// The row of one field, reached in an object that is known to be a `Process`.
template <typename Process, auto Member>
constexpr OptionField Field(std::string_view filter, std::string_view name) {
    using Value = std::remove_reference_t<decltype(std::declval<Process&>().*Member)>;
    return {filter, name, std::is_same_v<Value, bool>,
            [](const ImageProcess& object) {
                return static_cast<int32_t>(static_cast<const Process&>(object).*Member);
            },
            [](ImageProcess& object, int32_t value) {
                static_cast<Process&>(object).*Member = static_cast<Value>(value);
            }};
}

constexpr OptionField Target(std::string_view filter) {
    return Field<ImageProcess, &ImageProcess::TargetType>(filter, "TargetType");
}

using Gray = GrayScaleImageProcess;
using Mono = MonoImageProcess;
using Reduce = ReduceColorImageProcess;
using Scaling = ScalingImageProcess;

/// The fields of a filter stand together.
constexpr std::array kFields{
    Field<Gray, &Gray::CalcMode>("gray", "CalcMode"),
    Field<Gray, &Gray::ColorMode>("gray", "ColorMode"),
    Target("gray"),
    Field<Mono, &Mono::Threshold>("mono", "Threshold"),
    Target("mono"),
    Target("nega"),
    Field<Reduce, &Reduce::ReduceColor>("col_reduce", "ReduceColor"),
    Field<Reduce, &Reduce::DitherType>("col_reduce", "DitherType"),
    Field<Reduce, &Reduce::SharePalette>("col_reduce", "SharePalette"),
    Field<Reduce, &Reduce::GraduateReduce>("col_reduce", "GraduateReduce"),
    Target("col_reduce"),
    Field<Scaling, &Scaling::newWidth>("scaling", "newWidth"),
    Field<Scaling, &Scaling::newHeight>("scaling", "newHeight"),
    Field<Scaling, &Scaling::RatioSize>("scaling", "RatioSize"),
    Field<Scaling, &Scaling::RatioWidth>("scaling", "RatioWidth"),
    Field<Scaling, &Scaling::RatioHeight>("scaling", "RatioHeight"),
    Field<Scaling, &Scaling::FixRatio>("scaling", "FixRatio"),
    Field<Scaling, &Scaling::InterType>("scaling", "InterType"),
    Field<Scaling, &Scaling::BoundaryType>("scaling", "BoundaryType"),
    Field<Scaling, &Scaling::BoundAlpha>("scaling", "BoundAlpha"),
    Field<Scaling, &Scaling::ChangeBrush>("scaling", "ChangeBrush"),
};

std::string FieldNames(std::string_view filter) {
    std::string names;
    for (const OptionField& field : OptionFields(filter)) {
        names.append(names.empty() ? "" : ", ").append(field.name);
    }
    return names.empty() ? "this filter has no options" : "the options are " + names;
}

}  // namespace

std::span<const OptionField> OptionFields(std::string_view filter) {
    const auto isOfFilter = [&](const OptionField& field) { return field.filter == filter; };
    const auto first = std::find_if(kFields.begin(), kFields.end(), isOfFilter);
    return {first, std::find_if_not(first, kFields.end(), isOfFilter)};
}

const OptionField* FindOption(std::string_view filter, std::string_view name) {
    for (const OptionField& field : OptionFields(filter)) {
        if (field.name == name) {
            return &field;
        }
    }
    return nullptr;
}

OptionValue Option(std::string_view filter, std::string_view name, int32_t value) {
    return {FindOption(filter, name), value};
}

OptionValue ParseOption(std::string_view filter, const std::string& text) {
    const size_t equals = text.find('=');
    const OptionField* field = FindOption(filter, text.substr(0, equals));
    if (equals == std::string::npos || field == nullptr) {
        throw std::invalid_argument("'" + text + "' sets nothing; write Field=value, " +
                                    FieldNames(filter));
    }
    const std::string value = text.substr(equals + 1);
    if (field->isSwitch && (value == "true" || value == "false")) {
        return {field, value == "true"};
    }
    int32_t number = 0;
    const auto [end, fault] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (fault != std::errc() || end != value.data() + value.size() ||
        (field->isSwitch && number != 0 && number != 1)) {
        throw std::invalid_argument("'" + text + "': " +
                                    (field->isSwitch ? "the value must be 0, 1, true or false"
                                                     : "the value must be a whole number"));
    }
    return {field, number};
}

std::vector<OptionValue> ReadOptions(std::string_view filter, const ImageProcess& object) {
    std::vector<OptionValue> values;
    for (const OptionField& field : OptionFields(filter)) {
        values.push_back({&field, field.get(object)});
    }
    return values;
}

std::vector<OptionValue> ExchangeOptions(ImageProcess& object,
                                         std::span<const OptionValue> values) {
    std::vector<OptionValue> before;
    for (const OptionValue& option : values) {
        // In front, since a field that is set twice must end as it began.
        before.insert(before.begin(), {option.field, option.field->get(object)});
        option.field->set(object, option.value);
    }
    return before;
}

}  // namespace imgbasic::host
