#include "lib/base/wide_text.h"

#include "lib/base/platform.h"

namespace imgbasic {
namespace {

constexpr UINT kShiftJis = 932;

/// What is no text of that code page becomes U+FFFD, or what else the code page has for it.
std::wstring Wide(std::string_view text, UINT codePage) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    const int length = MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), size);
    wide.resize(static_cast<size_t>(length));
    return wide;
}

}  // namespace

std::wstring WideFromShiftJis(std::string_view text) {
    return Wide(text, kShiftJis);
}

std::wstring WideFromUtf8(std::string_view text) {
    return Wide(text, CP_UTF8);
}

std::string ShiftJisFromWide(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string narrow(2 * text.size(), '\0');
    const int length = WideCharToMultiByte(kShiftJis, 0, text.data(), size, narrow.data(), 2 * size,
                                           nullptr, nullptr);
    narrow.resize(static_cast<size_t>(length));
    return narrow;
}

}  // namespace imgbasic
