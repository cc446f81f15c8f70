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

constexpr size_t kLineSize = 1024 + 32;

using Sink = std::function<void(std::string_view)>;

std::binary_semaphore logSemaphore{1};

Sink& CurrentSink() {
    static Sink sink;
    return sink;
}

class LogLock {
  public:
    LogLock() { logSemaphore.acquire(); }
    ~LogLock() { logSemaphore.release(); }
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

void WriteToSystem(const char* line) {
#ifdef _WIN32
    // The wide function shows Japanese whatever code page the process runs in.
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
    const size_t stamp = WriteTimeStamp(line, sizeof line);
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line + stamp, sizeof line - stamp, format, arguments);
    va_end(arguments);

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
