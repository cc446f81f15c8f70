#pragma once

#include <string>
#include <string_view>

namespace imgbasic::host {

/// UTF-8 to Shift-JIS (code page 932). What Shift-JIS lacks, and bytes that are no UTF-8, become
/// question marks.
std::string Utf8ToShiftJis(std::string_view utf8);

/// Shift-JIS (code page 932) to UTF-8. Bytes that are no Shift-JIS become question marks.
std::string ShiftJisToUtf8(std::string_view shiftJis);

/// The longest beginning of at most `most` bytes that cuts no double-byte character in two.
std::string_view CutShiftJis(std::string_view shiftJis, size_t most);

}  // namespace imgbasic::host
