#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace imgbasic {

/// What the text in a number field means.
struct TypedNumber {
    std::optional<int32_t> value;  ///< within the field's bounds; none while nothing is typed
    bool rewrite = false;          ///< the field is to show the value instead of the text
};

/// Reads a number field between `low` and `high` whose text (Shift-JIS) may be anything. Commas
/// are left out; the number ends where the digits do, and without any it is 0. A field that is
/// left empty counts as 0; `leaving` also has the text rewritten unless it is a number in bounds.
TypedNumber ReadTypedNumber(std::string_view text, int32_t low, int32_t high, bool leaving);

}  // namespace imgbasic
