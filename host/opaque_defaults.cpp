#include "host/opaque_defaults.h"

#include <algorithm>

#include "lib/image/resample/resample.h"

namespace imgbasic::host {
namespace {

struct Default {
    std::string_view option;
    int32_t value;
};

constexpr Default kDefaults[] = {{"BoundaryType", BoundaryClamp}, {"BoundAlpha", 0}};

}  // namespace

std::optional<int32_t> OpaqueDefault(std::string_view option) {
    const auto* const known = std::ranges::find(kDefaults, option, &Default::option);
    return known != std::end(kDefaults) ? std::optional(known->value) : std::nullopt;
}

std::vector<OptionValue> OpaqueDefaults(std::string_view filter, const Document& document) {
    std::vector<OptionValue> values;
    for (const FilterOption& option : OptionsOf(filter)) {
        if (const std::optional<int32_t> value = OpaqueDefault(option.name)) {
            values.push_back({&option, *value});
        }
    }
    const Layer* const layer = values.empty() ? nullptr : WholePicture(document);
    if (layer == nullptr || !IsOpaque(layer->pixels)) {
        values.clear();
    }
    return values;
}

}  // namespace imgbasic::host
