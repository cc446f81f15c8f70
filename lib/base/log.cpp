#include "lib/base/log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <semaphore>
#include <utility>

#include "lib/base/platform.h"

namespace imgbasic {
namespace {

constexpr size_t kStampSize = 32;
constexpr size_t kMessageSize = 1024;
constexpr size_t kLineSize = kStampSize + kMessageSize;

using Sink = std::function<void(std::string_view)>;

/// Made by its first use, which may be before this file's variables are: other variables'
/// initialisers log, too.
std::binary_semaphore& LogSemaphore() {
    static std::binary_semaphore semaphore{1};
    return semaphore;
}

Sink& CurrentSink() {
    static Sink sink;
    return sink;
}

class LogLock {
  public:
    LogLock() { LogSemaphore().acquire(); }
    ~LogLock() { LogSemaphore().release(); }
    LogLock(const LogLock&) = delete;
    LogLock& operator=(const LogLock&) = delete;
};

size_t WriteTimeStamp(char* buffer, size_t size) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    const int written =
        std::snprintf(buffer, size, "%04d/%02d/%02d %02d:%02d:%02d : ", local.tm_year + 1900,
                      local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return written > 0 ? std::min(static_cast<size_t>(written), size - 1) : 0;
}

/// Keeps the line feed of a message that was cut after `size` bytes, and no part of a character.
void EndCutMessage(char* message, size_t size) {
    size_t end = size - 1;
    while (end > 0 && (message[end] & 0xC0) == 0x80) {
        --end;
    }
    message[end] = '\n';
    message[end + 1] = '\0';
}

void WriteToSystem(const char* line) {
#ifdef _WIN32
    // The system hands it to most debuggers in the ANSI code page, so that Japanese arrives as
    // question marks where that is another one than 932.
    wchar_t wide[kLineSize];
    if (MultiByteToWideChar(CP_UTF8, 0, line, -1, wide, static_cast<int>(std::size(wide))) > 0) {
        OutputDebugStringW(wide);
    }
#else
    std::fputs(line, stderr);
#endif
}

}  // namespace

void Log(const char* format, ...) noexcept {
    char line[kLineSize];
    char* const message = line + WriteTimeStamp(line, kStampSize);
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(message, kMessageSize, format, arguments);
    va_end(arguments);
    if (length >= static_cast<int>(kMessageSize)) {
        EndCutMessage(message, kMessageSize - 1);
    }

    const LogLock lock;
    if (const Sink& sink = CurrentSink()) {
        try {
            sink(line);
        } catch (...) {
            // A log line is never worth a failure of what it reports on.
        }
    } else {
        WriteToSystem(line);
    }
}

LogCapture::LogCapture(std::function<void(std::string_view line)> sink) {
    const LogLock lock;
    previous_ = std::exchange(CurrentSink(), std::move(sink));
}

LogCapture::~LogCapture() {
    const LogLock lock;
    CurrentSink() = std::move(previous_);
}

}  // namespace imgbasic
