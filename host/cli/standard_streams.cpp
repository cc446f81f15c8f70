#include "host/cli/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "host/image_file.h"

namespace imgbasic::host {

void SecureStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF) {
            // The lowest free number is the missing stream's. Its use is an error, as it was.
            (void)open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
    std::signal(SIGPIPE, SIG_IGN);
}

bool IsStandardOutputTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

void WriteStandardOutput(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes = bytes.subspan(static_cast<size_t>(written));
        } else if (errno != EINTR) {
            throw FileError("standard output: cannot be written (" +
                            std::system_category().message(errno) +
                            "); look at the program or the file that it goes to");
        }
    }
}

}  // namespace imgbasic::host
