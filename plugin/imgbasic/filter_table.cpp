#include "plugin/imgbasic/filter_table.h"

#include <algorithm>
#include <string_view>

#include "lib/base/ascii.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic {
namespace {

constexpr size_t kLongestName = [] {
    size_t longest = 0;
    for (const FilterRow& row : kFilterRows) {
        longest = std::max(longest, std::string_view(row.name).size());
    }
    return longest;
}();

/// Not std::strlen, which would follow a name without an end out of its buffer.
size_t BoundedLength(const char* name) {
    size_t length = 0;
    while (length <= kLongestName && name[length] != '\0') {
        ++length;
    }
    return length;
}

template <typename Process>
std::unique_ptr<ImageProcess> Create() {
    return std::make_unique<Process>();
}

template <typename... Process>
std::unique_ptr<ImageProcess> CreateNth(size_t index, FilterList<Process...> /*filters*/) {
    constexpr std::unique_ptr<ImageProcess> (*kCreate[])() = {Create<Process>...};
    return kCreate[index]();
}

}  // namespace

const FilterRow* FindFilter(const char* name) {
    if (name == nullptr) {
        return nullptr;
    }
    const std::string_view asked(name, BoundedLength(name));
    const auto* row = std::ranges::find_if(
        kFilterRows, [&](const FilterRow& r) { return EqualIgnoringCase(asked, r.name); });
    return row != kFilterRows.end() ? row : nullptr;
}

std::unique_ptr<ImageProcess> CreateFilter(const FilterRow& row) {
    return CreateNth(static_cast<size_t>(&row - kFilterRows.data()), Filters{});
}

}  // namespace imgbasic
