#include <glib.h>
#include <iconv.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

#include "host/text_encoding.h"

namespace imgbasic::host {
namespace {

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

}  // namespace

std::string Utf8ToShiftJis(std::string_view utf8) {
    return Convert(utf8, "UTF-8", "CP932", true);
}

std::string ShiftJisToUtf8(std::string_view shiftJis) {
    return Convert(shiftJis, "CP932", "UTF-8", false);
}

std::string ValidUtf8(const std::string& text) {
    const std::unique_ptr<char, void (*)(void*)> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), g_free);
    return valid.get();
}

}  // namespace imgbasic::host
