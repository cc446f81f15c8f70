#pragma once

#include <functional>
#include <string_view>

// clang knows one style only.
#if defined(__MINGW32__) && !defined(__clang__)
#define IMGBASIC_PRINTF_STYLE gnu_printf
#else
#define IMGBASIC_PRINTF_STYLE printf
#endif

namespace imgbasic {

/// Writes one line, "YYYY/MM/DD HH:MM:SS : " in local time and then the formatted message, to
/// the debugger's output on Windows, where what the ANSI code page lacks becomes question marks,
/// and to standard error elsewhere. `format` is UTF-8 and ends in a line feed. A message of more
/// than 1023 bytes is cut to that at most, between characters, and keeps its line feed. Never
/// throws; safe from any thread and before main.
[[gnu::format(IMGBASIC_PRINTF_STYLE, 1, 2)]] void Log(const char* format, ...) noexcept;

/// While it lives, log lines go to `sink` instead. Captures nest; the innermost receives.
class LogCapture {
  public:
    /// `sink` receives each line whole, time stamp and line feed included.
    explicit LogCapture(std::function<void(std::string_view line)> sink);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

  private:
    std::function<void(std::string_view line)> previous_;
};

}  // namespace imgbasic
