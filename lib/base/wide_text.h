#pragma once

#include <string>
#include <string_view>

namespace imgbasic {

// Conversions that do not depend on the code page that the process runs in.

std::wstring WideFromShiftJis(std::string_view text);
std::wstring WideFromUtf8(std::string_view text);
std::string ShiftJisFromWide(std::wstring_view text);

}  // namespace imgbasic
