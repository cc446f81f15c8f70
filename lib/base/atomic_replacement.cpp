#include "lib/base/atomic_replacement.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace imgbasic {
namespace {

namespace fs = std::filesystem;

/// Nobody gives a file of their own such a name, so that what has it may be removed.
constexpr char kSuffix[] = ".imgbasic-part";
constexpr size_t kLongestStem = 200;  // of the 255 bytes that a name may have

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto Retried(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

int ErrorIf(bool failed) {
    return failed ? errno : 0;
}

/// Waits for the lock, but not for ever: whoever holds it may be stopped.
int TakeLock(int descriptor) {
    constexpr int kMostTries = 5000;
    for (int tries = 0; tries < kMostTries; ++tries) {
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
            return 0;
        }
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return errno;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return EBUSY;
}

/// Whether the open file still has this name.
bool IsNamed(int descriptor, const fs::path& name) {
    struct stat file {};
    struct stat named {};
    return fstat(descriptor, &file) == 0 && lstat(name.c_str(), &named) == 0 &&
           file.st_dev == named.st_dev && file.st_ino == named.st_ino;
}

/// Waits until the temporary file belongs to no process any more, and removes it unless it has
/// gone to its place.
int RemoveAbandoned(const fs::path& temporary) {
    const int descriptor = Retried(
        [&] { return open(temporary.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); });
    if (descriptor < 0) {
        return errno == ENOENT ? 0 : errno;
    }
    int error = TakeLock(descriptor);
    if (error == 0 && IsNamed(descriptor, temporary)) {
        error = ErrorIf(unlink(temporary.c_str()) != 0);
    }
    close(descriptor);
    return error;
}

int WriteWhole(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written =
            Retried([&] { return write(descriptor, content.data(), content.size()); });
        if (written < 0) {
            return errno;
        }
        content.remove_prefix(static_cast<size_t>(written));
    }
    // Without it a crash of the system could leave the new name with no content. Some file
    // systems have nothing to wait for.
    return Retried([&] { return fsync(descriptor); }) == 0 || errno == EINVAL ? 0 : errno;
}

/// A file without a name that can be given one later; -1 where there are none.
int OpenNameless(const fs::path& folder) {
    // Through this the file gets its name.
    if (access("/proc/self/fd", X_OK) != 0) {
        return -1;
    }
    return Retried([&] { return open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666); });
}

/// Renames, or on a file system without such a rename links, so that nothing is replaced.
int RenameToNothing(const fs::path& from, const fs::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    if (link(from.c_str(), to.c_str()) != 0) {
        return errno;
    }
    unlink(from.c_str());
    return 0;
}

}  // namespace

fs::path FollowLinks(fs::path path) {
    constexpr int kMostLinks = 40;  // the system's own limit
    for (int i = 0; i < kMostLinks; ++i) {
        std::error_code error;
        const fs::path next = fs::read_symlink(path, error);
        if (error) {
            break;
        }
        path = path.parent_path() / next;
    }
    return path;
}

bool IsReadOnly(const fs::path& path) {
    constexpr mode_t kAnybodyWrites = S_IWUSR | S_IWGRP | S_IWOTH;
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return false;
    }
    // The permissions themselves bind whom the system lets do everything. A disk that is read-only
    // is no matter of the file.
    return (status.st_mode & kAnybodyWrites) == 0 ||
           (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0 && errno != EROFS);
}

AtomicReplacement::~AtomicReplacement() {
    if (visible_) {
        unlink(temporary_.c_str());
    }
    if (descriptor_ >= 0) {
        close(descriptor_);  // only after the removal: it gives the lock away
    }
}

int AtomicReplacement::Begin(const fs::path& path, Existing existing) {
    return Open(path, existing, OpenNameless(path.has_parent_path() ? path.parent_path() : "."));
}

int AtomicReplacement::Lock(const fs::path& path) {
    return Open(path, Existing::Replaced, -1);
}

int AtomicReplacement::Commit(std::string_view content) {
    const int error = WriteWhole(descriptor_, content);
    return error != 0 ? error : TakePlace();
}

int AtomicReplacement::Open(const fs::path& path, Existing existing, int nameless) {
    descriptor_ = nameless;
    target_ = path;
    existing_ = existing;
    temporary_ = path;
    temporary_.replace_filename(path.filename().string().substr(0, kLongestStem) + kSuffix);
    struct stat old {};
    const bool replaces = stat(target_.c_str(), &old) == 0;
    if (replaces && existing == Existing::Refused) {
        return EEXIST;
    }
    if (IsReadOnly(target_)) {
        return EACCES;
    }
    const int error = descriptor_ < 0 ? OpenNamed() : 0;
    if (replaces && error == 0) {
        const bool sameOwner = fchown(descriptor_, old.st_uid, old.st_gid) == 0;
        fchmod(descriptor_, old.st_mode & (sameOwner ? 07777U : 00777U));
    }
    return error;
}

int AtomicReplacement::OpenNamed() {
    for (;;) {
        descriptor_ = Retried([&] {
            return open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        });
        if (descriptor_ < 0) {
            const int error = errno == EEXIST ? RemoveAbandoned(temporary_) : errno;
            if (error != 0) {
                return error;
            }
            continue;
        }
        const int error = TakeLock(descriptor_);
        // Until it had the lock, another process may have taken the file for abandoned.
        visible_ = IsNamed(descriptor_, temporary_);
        if (visible_ || error != 0) {
            return error;
        }
        close(descriptor_);
    }
}

int AtomicReplacement::AppearAs(const fs::path& name) const {
    const std::string nameless = "/proc/self/fd/" + std::to_string(descriptor_);
    return ErrorIf(linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) !=
                   0);
}

int AtomicReplacement::TakePlace() {
    int error = 0;
    if (existing_ == Existing::Refused) {
        error = visible_ ? RenameToNothing(temporary_, target_) : AppearAs(target_);
    } else {
        if (!visible_) {
            error = TakeLock(descriptor_);
            while (error == 0 && (error = AppearAs(temporary_)) == EEXIST) {
                error = RemoveAbandoned(temporary_);
            }
            visible_ = error == 0;
        }
        if (error == 0) {
            error = ErrorIf(std::rename(temporary_.c_str(), target_.c_str()) != 0);
        }
    }
    visible_ = visible_ && error != 0;
    return error;
}

}  // namespace imgbasic
