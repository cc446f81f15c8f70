#include "lib/base/number_text.h"

#include <algorithm>
#include <string>

namespace imgbasic {
namespace {

/// The number at the text's beginning, as far as an int32_t goes.
int64_t LeadingNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    int64_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            break;
        }
        number = std::min<int64_t>(number * 10 + (c - '0'), INT32_MAX);
    }
    return negative ? -number : number;
}

}  // namespace

TypedNumber ReadTypedNumber(std::string_view text, int32_t low, int32_t high, bool leaving) {
    std::string rest(text);
    std::erase(rest, ',');
    if (rest.empty() && !leaving) {
        return {};
    }
    const int64_t number = LeadingNumber(rest);
    const int64_t value = std::clamp<int64_t>(number, low, high);
    return {static_cast<int32_t>(value), leaving && (rest.empty() || value != number)};
}

}  // namespace imgbasic
