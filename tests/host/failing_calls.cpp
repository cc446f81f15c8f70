// Preloaded into a program, this makes its system calls fail as a disk or a user might. What is to
// happen stands in the environment.

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>

namespace {

/// FAULT_DIE_BY is the signal that ends the process as it has written its first file but not yet
/// put it in its place; FAULT_RIVAL a file that another process writes at that moment.
void AtFirstFile() {
    if (const char* rival = std::getenv("FAULT_RIVAL")) {
        close(open(rival, O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
    }
    if (const char* number = std::getenv("FAULT_DIE_BY")) {
        std::raise(std::atoi(number));
    }
}

/// With FAULT_INTERRUPT a signal interrupts every other call.
bool IsInterrupted() {
    static bool interrupted = false;
    interrupted = !interrupted && std::getenv("FAULT_INTERRUPT") != nullptr;
    errno = EINTR;
    return interrupted;
}

}  // namespace

/// With FAULT_NAMED the file system has no files without a name.
extern "C" int open(const char* path, int flags, ...) {
    if ((flags & O_TMPFILE) == O_TMPFILE && std::getenv("FAULT_NAMED") != nullptr) {
        errno = EOPNOTSUPP;
        return -1;
    }
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode =
        (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : mode_t{0};
    va_end(arguments);
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

extern "C" ssize_t write(int descriptor, const void* bytes, size_t size) {
    return IsInterrupted() ? -1 : syscall(SYS_write, descriptor, bytes, size);
}

extern "C" int fsync(int descriptor) {
    AtFirstFile();
    return IsInterrupted() ? -1 : static_cast<int>(syscall(SYS_fsync, descriptor));
}
