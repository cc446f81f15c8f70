#include "host/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "host/image_file.h"

namespace imgbasic::host {
namespace fs = std::filesystem;

AtomicFile::AtomicFile(const fs::path& path, bool overwrite) : shown_(path), target_(path) {
    std::error_code ignored;
    // A link to nothing is something, too.
    if (fs::exists(fs::symlink_status(path, ignored))) {
        if (!fs::is_regular_file(path, ignored)) {
            throw FileError(path.string() +
                            ": is not a file that can be replaced; choose another "
                            "name for the output");
        }
        if (!overwrite) {
            throw FileError(path.string() +
                            ": exists already; choose another name or allow overwriting");
        }
        target_ = fs::canonical(path, ignored);
    }
    const fs::path folder = target_.has_parent_path() ? target_.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, ignored)) {
        throw FileError(path.string() + ": there is no folder " + folder.string() +
                        "; create it or choose another one");
    }
    // Unique among the processes that write here; within one, files are written one by one.
    std::string name = target_.filename().string().substr(0, 200);
    name.append(".").append(std::to_string(getpid())).append(".tmp");
    const fs::path temporary = folder / name;
    fs::remove(temporary, ignored);
    descriptor_ = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0) {
        Fail(errno);
    }
    temporary_ = temporary;
    // What replaces a private file stays private.
    struct stat replaced {};
    if (stat(target_.c_str(), &replaced) == 0) {
        fchmod(descriptor_, replaced.st_mode & 07777);
    }
}

AtomicFile::~AtomicFile() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
    if (!temporary_.empty()) {
        std::error_code ignored;
        fs::remove(temporary_, ignored);
    }
}

void AtomicFile::Commit(std::span<const std::byte> content) {
    while (!content.empty()) {
        const ssize_t written = write(descriptor_, content.data(), content.size());
        if (written < 0 && errno != EINTR) {
            Fail(errno);
        }
        content = content.subspan(written < 0 ? 0 : static_cast<size_t>(written));
    }
    // Without it a crash of the system could leave the new name with no content.
    if (fsync(descriptor_) != 0 && errno != EINVAL) {
        Fail(errno);
    }
    const int descriptor = descriptor_;
    descriptor_ = -1;
    if (close(descriptor) != 0) {
        Fail(errno);
    }
    std::error_code error;
    fs::rename(temporary_, target_, error);
    if (error) {
        Fail(error.value());
    }
    temporary_.clear();
}

void AtomicFile::Fail(int error) const {
    const char* const wayOut =
        error == ENOSPC || error == EDQUOT
            ? "; make room there or choose another folder"
            : "; choose another folder or change the permissions of this one";
    throw FileError(shown_.string() + ": cannot be written (" +
                    std::system_category().message(error) + ")" + wayOut);
}

}  // namespace imgbasic::host
