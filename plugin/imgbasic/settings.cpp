#include "plugin/imgbasic/settings.h"

namespace imgbasic {
namespace {

std::vector<const FilterOption*> StoredOptions(const FilterRow& filter) {
    std::vector<const FilterOption*> options;
    for (const FilterOption& option : filter.options) {
        if (option.isStored) {
            options.push_back(&option);
        }
    }
    return options;
}

std::vector<StoredNumber> NamedValues(const FilterRow& filter) {
    std::vector<StoredNumber> values;
    for (const FilterOption* option : StoredOptions(filter)) {
        values.push_back({option->name});
    }
    return values;
}

/// `before` with its lowest bytes replaced by those that are stored.
uint32_t Overlaid(uint32_t before, const StoredNumber& stored) {
    const uint64_t kept = ~uint64_t{0} << (8 * stored.size);
    return static_cast<uint32_t>((before & kept) | (stored.number & ~kept));
}

void LoadOption(ImageProcess& process, const FilterOption& option, Loading loading,
                const StoredNumber& stored) {
    const bool isSwitch = option.kind == OptionKind::Switch;
    // A switch that is missing is off.
    const uint32_t before = isSwitch ? 0 : static_cast<uint32_t>(option.get(process));
    const auto loaded = static_cast<int32_t>(Overlaid(before, stored));
    const bool whole = stored.size == sizeof loaded;
    if (option.Allows(loaded) && (loading == Loading::Lenient || whole)) {
        option.set(process, loaded);
    } else if (loading == Loading::Lenient && !isSwitch) {
        option.set(process, option.initial);
    }
}

}  // namespace

void LoadSettings(ImageProcess& process, const FilterRow& filter) {
    std::vector<StoredNumber> stored = NamedValues(filter);
    if (!QueryStore(filter.name, stored)) {
        return;
    }
    size_t index = 0;
    for (const FilterOption* option : StoredOptions(filter)) {
        LoadOption(process, *option, filter.loading, stored[index++]);
    }
}

void SaveSettings(const ImageProcess& process, const FilterRow& filter) noexcept try {
    std::vector<StoredNumber> values;
    for (const FilterOption* option : StoredOptions(filter)) {
        const auto number = static_cast<uint32_t>(option->get(process));
        values.push_back({option->name, number, sizeof number});
    }
    WriteStore(filter.name, values);
} catch (...) {
    // Without memory it is a store that cannot be written: the run stays confirmed.
}

std::vector<StoredNumber> ListSettings(const FilterRow& filter) {
    std::vector<StoredNumber> found = NamedValues(filter);
    if (found.empty()) {
        return found;
    }
    QueryStore(filter.name, found);
    std::erase_if(found, [](const StoredNumber& value) { return value.size == 0; });
    return found;
}

}  // namespace imgbasic
