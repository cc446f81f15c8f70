#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace imgbasic::host {

/// UTF-8 to Shift-JIS (code page 932). What Shift-JIS lacks, and bytes that are no UTF-8, become
/// question marks.
std::string Utf8ToShiftJis(std::string_view utf8);

/// Shift-JIS (code page 932) to UTF-8. Bytes that are no Shift-JIS become question marks.
std::string ShiftJisToUtf8(std::string_view shiftJis);

/// The text with U+FFFD in place of what is no UTF-8, up to its first zero.
std::string ValidUtf8(const std::string& text);

/// What path.string() gives, which is UTF-8 on every system, as a path again.
inline std::filesystem::path PathFrom(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

}  // namespace imgbasic::host
