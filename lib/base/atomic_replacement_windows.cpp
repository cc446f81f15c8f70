#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "lib/base/atomic_replacement.h"

namespace imgbasic {
namespace {

namespace fs = std::filesystem;

/// Nobody gives a file of their own such a name, so that what has it may be overwritten.
constexpr wchar_t kSuffix[] = L".imgbasic-part";

int WriteWhole(int descriptor, std::string_view content) {
    constexpr size_t kMost = size_t{1} << 30;  // a call takes what fits 32 bits
    while (!content.empty()) {
        const int written = _write(descriptor, content.data(),
                                   static_cast<unsigned>(std::min(content.size(), kMost)));
        if (written < 0) {
            return errno;
        }
        content.remove_prefix(static_cast<size_t>(written));
    }
    return _commit(descriptor) == 0 ? 0 : errno;
}

int ErrnoOf(DWORD error) {
    switch (error) {
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return EEXIST;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return EACCES;
        default:
            return EIO;
    }
}

}  // namespace

fs::path FollowLinks(fs::path path) {
    std::error_code error;
    fs::path end = fs::is_symlink(path, error) ? fs::weakly_canonical(path, error) : fs::path();
    if (!error && !end.empty()) {
        path = std::move(end);
    }
    return path;
}

bool IsReadOnly(const fs::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

AtomicReplacement::~AtomicReplacement() {
    if (descriptor_ >= 0) {
        _close(descriptor_);  // only then it can be removed
    }
    if (visible_) {
        _wunlink(temporary_.c_str());
    }
}

int AtomicReplacement::Begin(const fs::path& path, Existing existing) {
    target_ = path;
    existing_ = existing;
    temporary_ = path;
    temporary_ += kSuffix;
    std::error_code ignored;
    if (existing == Existing::Refused && fs::exists(target_, ignored)) {
        return EEXIST;
    }
    if (IsReadOnly(target_)) {
        return EACCES;
    }
    return OpenNamed();
}

int AtomicReplacement::Commit(std::string_view content) {
    const int error = WriteWhole(descriptor_, content);
    return error != 0 ? error : TakePlace();
}

int AtomicReplacement::OpenNamed() {
    descriptor_ = _wopen(temporary_.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY,
                         _S_IREAD | _S_IWRITE);
    visible_ = descriptor_ >= 0;
    return visible_ ? 0 : errno;
}

int AtomicReplacement::TakePlace() {
    _close(descriptor_);
    descriptor_ = -1;
    const DWORD replace = existing_ == Existing::Replaced ? MOVEFILE_REPLACE_EXISTING : 0;
    visible_ =
        MoveFileExW(temporary_.c_str(), target_.c_str(), replace | MOVEFILE_WRITE_THROUGH) == 0;
    return visible_ ? ErrnoOf(GetLastError()) : 0;
}

}  // namespace imgbasic
