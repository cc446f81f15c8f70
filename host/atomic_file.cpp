#include "host/atomic_file.h"

#ifndef _WIN32
#include <unistd.h>
#endif

#include <atomic>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>

#include "host/image_file.h"

namespace imgbasic::host {
namespace fs = std::filesystem;

namespace {

/// What a signal's handler removes; null when there is nothing. Outputs are written one by one.
std::atomic<const fs::path::value_type*> begun = nullptr;
static_assert(decltype(begun)::is_always_lock_free, "a handler may use nothing else");

#ifndef _WIN32
extern "C" void RemoveBegunOutput(int signal) {
    if (const char* const temporary = begun) {
        unlink(temporary);
    }
    // Whoever started the process learns which signal ended it.
    std::signal(signal, SIG_DFL);
    raise(signal);
}
#endif

}  // namespace

#ifndef _WIN32
void RemoveBegunOutputOnSignals() {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGXFSZ}) {
        // What is ignored, as under nohup, stays so.
        if (std::signal(signal, RemoveBegunOutput) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}
#endif

AtomicFile::AtomicFile(const fs::path& path, bool overwrite) : shown_(path) {
    std::error_code ignored;
    const fs::path target = FollowLinks(path);
    // A link to nothing is something, too.
    const bool exists = fs::exists(fs::symlink_status(path, ignored));
    if (fs::exists(target, ignored) && !fs::is_regular_file(target, ignored)) {
        throw FileError(path.string() +
                        ": is not a file that can be replaced; choose another name for the "
                        "output");
    }
    if (exists && !overwrite) {
        Fail(EEXIST);
    }
    if (IsReadOnly(target)) {
        throw FileError(path.string() +
                        ": is read-only; make it writable or choose another name for the output");
    }
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, ignored)) {
        throw FileError(path.string() + ": there is no folder " + folder.string() +
                        "; create it or choose another one");
    }
    using Existing = AtomicReplacement::Existing;
    if (const int error = file_.Begin(target, overwrite ? Existing::Replaced : Existing::Refused)) {
        Fail(error);
    }
    begun = file_.temporary();
}

AtomicFile::~AtomicFile() {
    begun = nullptr;
}

void AtomicFile::Commit(std::span<const std::byte> content) {
    if (const int error =
            file_.Commit({reinterpret_cast<const char*>(content.data()), content.size()})) {
        Fail(error);
    }
    begun = nullptr;
}

void AtomicFile::Fail(int error) const {
    if (error == EEXIST) {
        throw FileError(shown_.string() +
                        ": exists already; choose another name or allow overwriting");
    }
#ifdef _WIN32
    const bool isFull = error == ENOSPC;
#else
    const bool isFull = error == ENOSPC || error == EDQUOT;
#endif
    const char* const wayOut =
        isFull ? "; make room there or choose another folder"
               : "; choose another folder or change the permissions of this one";
    throw FileError(shown_.string() + ": cannot be written (" +
                    std::generic_category().message(error) + ")" + wayOut);
}

}  // namespace imgbasic::host
