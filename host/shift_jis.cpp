#include "host/shift_jis.h"

#include "lib/base/platform.h"

#ifndef _WIN32
#include <iconv.h>

#include <cstdint>
#include <stdexcept>
#endif

namespace imgbasic::host {
namespace {

#ifdef _WIN32

constexpr UINT kShiftJis = 932;

std::wstring Widen(std::string_view text, UINT codePage) {
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<size_t>(MultiByteToWideChar(codePage, 0, text.data(),
                                                        static_cast<int>(text.size()), wide.data(),
                                                        static_cast<int>(wide.size()))));
    return wide;
}

std::string Narrow(const std::wstring& wide, UINT codePage) {
    const bool isUtf8 = codePage == CP_UTF8;
    std::string text(wide.size() * 3, '\0');
    text.resize(static_cast<size_t>(WideCharToMultiByte(
        codePage, isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
        text.data(), static_cast<int>(text.size()), isUtf8 ? nullptr : "?", nullptr)));
    return text;
}

#else

/// Bytes of the character that cannot be converted: its UTF-8 length, or one of anything else.
size_t UnknownLength(std::string_view text, bool isUtf8) {
    size_t length = 1;
    while (isUtf8 && length < text.size() && (text[length] & 0xC0) == 0x80) {
        ++length;
    }
    return length;
}

/// Neither direction needs more than three bytes out for one byte in.
std::string Convert(std::string_view text, const char* from, const char* to, bool fromUtf8) {
    const iconv_t converter = iconv_open(to, from);
    if (reinterpret_cast<intptr_t>(converter) == -1) {
        throw std::runtime_error(std::string("this system cannot convert ") + from + " to " + to);
    }
    std::string converted(text.size() * 3, '\0');
    char* in = const_cast<char*>(text.data());
    size_t inLeft = text.size();
    char* out = converted.data();
    size_t outLeft = converted.size();
    while (iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<size_t>(-1)) {
        const size_t skipped = UnknownLength({in, inLeft}, fromUtf8);
        in += skipped;
        inLeft -= skipped;
        *out++ = '?';
        --outLeft;
    }
    iconv_close(converter);
    converted.resize(converted.size() - outLeft);
    return converted;
}

#endif

bool IsLeadByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

}  // namespace

std::string Utf8ToShiftJis(std::string_view utf8) {
#ifdef _WIN32
    return Narrow(Widen(utf8, CP_UTF8), kShiftJis);
#else
    return Convert(utf8, "UTF-8", "CP932", true);
#endif
}

std::string ShiftJisToUtf8(std::string_view shiftJis) {
#ifdef _WIN32
    return Narrow(Widen(shiftJis, kShiftJis), CP_UTF8);
#else
    return Convert(shiftJis, "CP932", "UTF-8", false);
#endif
}

std::string_view CutShiftJis(std::string_view shiftJis, size_t most) {
    size_t length = 0;
    while (length < shiftJis.size()) {
        const size_t next = length + (IsLeadByte(shiftJis[length]) ? 2 : 1);
        if (next > most || next > shiftJis.size()) {
            break;
        }
        length = next;
    }
    return shiftJis.substr(0, length);
}

}  // namespace imgbasic::host
