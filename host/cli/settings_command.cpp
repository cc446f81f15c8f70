#include "host/cli/settings_command.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <stdexcept>

#include "host/cli/file_jobs.h"
#include "host/cli/text_table.h"
#include "plugin/imgbasic/settings.h"

namespace imgbasic::host {
namespace {

constexpr const char* kStoringFilters[] = {"gray", "mono", "nega", "col_reduce", "scaling"};

void Reset(const char* filter) {
    if (!RemoveFromStore(filter)) {
        throw std::runtime_error(std::string("the stored options of ") + filter +
                                 " cannot be removed; is your configuration folder writable?");
    }
}

}  // namespace

void ShowSettings() {
    std::vector<TextRow> rows{{"FILTER", "OPTION", "STORED"}};
    for (const char* filter : kStoringFilters) {
        for (const StoredNumber& value : ListSettings(filter)) {
            rows.push_back({filter, value.name, std::to_string(value.number)});
        }
    }
    const bool any = rows.size() > 1;
    std::fputs(any ? AlignColumns(rows).c_str() : "Nothing is stored.\n", stdout);
}

void ResetSettings(const std::string& filter) {
    if (filter.empty()) {
        std::for_each(std::begin(kStoringFilters), std::end(kStoringFilters), Reset);
        return;
    }
    const auto* known = std::find(std::begin(kStoringFilters), std::end(kStoringFilters), filter);
    if (known == std::end(kStoringFilters)) {
        throw UsageError("'" + filter +
                         "' is no filter with stored options; those are gray, mono, nega, "
                         "col_reduce and scaling");
    }
    Reset(*known);
}

}  // namespace imgbasic::host
