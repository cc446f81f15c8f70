#include "host/cli/report.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace imgbasic::host {
namespace {

constexpr size_t kBarLength = 30;

/// To the first column, and clears the line.
constexpr const char* kClearLine = "\r\x1B[K";

void WriteWhole(FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

}  // namespace

Report::Report(bool quiet) : quiet_(quiet), hasTerminal_(isatty(STDERR_FILENO) != 0) {
}

void Report::Error(const std::string& text) const {
    Say("imgbasic: " + text);
}

void Report::Note(const std::string& text) const {
    if (!quiet_) {
        Say(text);
    }
}

void Report::Written(const std::filesystem::path& path) const {
    if (!quiet_) {
        if (hasTerminal_) {
            WriteWhole(stderr, kClearLine);
        }
        WriteWhole(stdout, path.string() + "\n");
    }
}

void Report::Progress(size_t done, size_t total) const {
    if (quiet_ || !hasTerminal_) {
        return;
    }
    if (done == total) {
        WriteWhole(stderr, kClearLine);
        return;
    }
    std::string bar(kBarLength, '.');
    std::fill_n(bar.begin(), kBarLength * done / total, '#');
    std::string line = kClearLine;
    line.append("[").append(bar).append("] ").append(std::to_string(done));
    WriteWhole(stderr, line.append(" of ").append(std::to_string(total)).append(" files"));
}

void Report::Summary(size_t files, size_t failed, double seconds) const {
    char time[32];
    std::snprintf(time, sizeof time, "%.1f s", seconds);
    Note(std::to_string(files) + " files, " + std::to_string(failed) + " failed, " + time);
}

void Report::Say(const std::string& text) const {
    WriteWhole(stderr, (hasTerminal_ ? kClearLine : "") + text + "\n");
}

}  // namespace imgbasic::host
