#include <windows.h>

#include "host/text_encoding.h"
#include "lib/base/wide_text.h"

namespace imgbasic::host {
namespace {

constexpr UINT kShiftJis = 932;

std::string Narrow(const std::wstring& text, UINT codePage) {
    const auto size = static_cast<int>(text.size());
    std::string narrow(3 * text.size(), '\0');
    const int length = WideCharToMultiByte(codePage, codePage == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS,
                                           text.data(), size, narrow.data(), 3 * size,
                                           codePage == CP_UTF8 ? nullptr : "?", nullptr);
    narrow.resize(static_cast<size_t>(length));
    return narrow;
}

}  // namespace

std::string Utf8ToShiftJis(std::string_view utf8) {
    return Narrow(WideFromUtf8(utf8), kShiftJis);
}

std::string ShiftJisToUtf8(std::string_view shiftJis) {
    return Narrow(WideFromShiftJis(shiftJis), CP_UTF8);
}

std::string ValidUtf8(const std::string& text) {
    return Narrow(WideFromUtf8(text.c_str()), CP_UTF8);
}

}  // namespace imgbasic::host
