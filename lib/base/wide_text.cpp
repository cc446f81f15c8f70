#include "lib/base/wide_text.h"

#include "lib/base/platform.h"

namespace imgbasic {
namespace {

constexpr UINT kShiftJis = 932;

}  // namespace

std::wstring WideFromShiftJis(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    const int length = MultiByteToWideChar(kShiftJis, 0, text.data(), size, wide.data(), size);
    wide.resize(static_cast<size_t>(length));
    return wide;
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
