#pragma once

#include <algorithm>
#include <string_view>

namespace imgbasic {

/// The small letter of an ASCII capital; anything else as it is, whatever the locale.
constexpr char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether two texts differ at most in the case of ASCII letters.
constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, LowerCase, LowerCase);
}

}  // namespace imgbasic
