#include "host/cli/settings_command.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string_view>

#include "host/cli/file_jobs.h"
#include "host/cli/text_table.h"
#include "plugin/imgbasic/filters.h"
#include "plugin/imgbasic/settings.h"

namespace imgbasic::host {
namespace {

std::vector<const FilterRow*> StoringFilters() {
    std::vector<const FilterRow*> filters;
    for (const FilterRow& row : kFilterRows) {
        if (!row.options.empty()) {
            filters.push_back(&row);
        }
    }
    return filters;
}

}  // namespace

void ShowSettings() {
    std::vector<TextRow> rows{{"FILTER", "OPTION", "STORED"}};
    for (const FilterRow* filter : StoringFilters()) {
        for (const StoredNumber& value : ListSettings(*filter)) {
            rows.push_back({filter->name, value.name, std::to_string(value.number)});
        }
    }
    const bool any = rows.size() > 1;
    std::fputs(any ? AlignColumns(rows).c_str() : "Nothing is stored.\n", stdout);
}

bool AreStored(const std::string& filter, std::span<const OptionValue> options) {
    std::map<std::string_view, uint32_t> missing;
    for (const OptionValue& given : options) {
        if (given.option->isStored) {
            missing[given.option->name] = static_cast<uint32_t>(given.value);
        }
    }
    const auto* const row = std::ranges::find(kFilterRows, filter, &FilterRow::name);
    for (const StoredNumber& value : ListSettings(*row)) {
        const auto given = missing.find(value.name);
        if (given != missing.end() && given->second == value.number) {
            missing.erase(given);
        }
    }
    return missing.empty();
}

void ResetSettings(const std::string& filter) {
    std::string names;
    for (const FilterRow* row : StoringFilters()) {
        names.append(names.empty() ? "" : ", ").append(row->name);
    }
    bool found = filter.empty();
    for (const FilterRow* row : StoringFilters()) {
        if (!filter.empty() && filter != row->name) {
            continue;
        }
        found = true;
        if (!RemoveFromStore(row->name)) {
            throw std::runtime_error(std::string("the stored options of ") + row->name +
                                     " cannot be removed; is your configuration folder writable?");
        }
    }
    if (!found) {
        throw UsageError("'" + filter + "' is no filter with stored options; those are " + names);
    }
}

}  // namespace imgbasic::host
