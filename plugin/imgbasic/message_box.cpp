#include "plugin/imgbasic/message_box.h"

#include <cstdio>
#include <string>
#include <utility>

#ifdef _WIN32
#include "lib/base/wide_text.h"
#endif

namespace imgbasic {
namespace {

using Sink = std::function<void(HWND owner, const Text& text)>;

Sink& CurrentSink() {
    static Sink sink;
    return sink;
}

/// Byte by byte is right for Shift-JIS too: '%' is never the second byte of a character.
std::string Format(std::string text, const char* argument) {
    if (const size_t place = text.find("%s"); place != std::string::npos) {
        text.replace(place, 2, argument);
    }
    return text;
}

void ShowToUser([[maybe_unused]] HWND owner, const Text& text) {
#ifdef _WIN32
    // The narrow function would read the texts in the code page of the process.
    MessageBoxW(owner, WideFromShiftJis(text.shiftJis).c_str(),
                WideFromShiftJis(texts::Of(texts::Message::ErrorCaption).shiftJis).c_str(), MB_OK);
#else
    std::fprintf(stderr, "%s: %s\n", texts::Of(texts::Message::ErrorCaption).utf8, text.utf8);
#endif
}

}  // namespace

void ShowError(HWND owner, const Text& text, const Text& argument) {
    const std::string utf8 = Format(text.utf8, argument.utf8);
    const std::string shiftJis = Format(text.shiftJis, argument.shiftJis);
    const Text formatted{utf8.c_str(), shiftJis.c_str()};
    if (const Sink& sink = CurrentSink()) {
        sink(owner, formatted);
    } else {
        ShowToUser(owner, formatted);
    }
}

ErrorCapture::ErrorCapture(std::function<void(HWND owner, const Text& text)> sink) {
    CurrentSink() = std::move(sink);
}

ErrorCapture::~ErrorCapture() {
    CurrentSink() = nullptr;
}

}  // namespace imgbasic
