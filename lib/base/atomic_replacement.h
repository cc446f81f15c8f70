#pragma once

#include <filesystem>
#include <string_view>

namespace imgbasic {

/// Where the links at `path` lead, also when nothing is there yet.
std::filesystem::path FollowLinks(std::filesystem::path path);

/// Whether a file is there that this process may not write, or that nobody may.
bool IsReadOnly(const std::filesystem::path& path);

/// A file that takes its place whole or not at all: whatever happens, the old one is there or the
/// new one. It keeps the owner and the permissions of what it replaces. The content waits in a
/// file without a name where the system has such files; elsewhere, and for a Lock, it has one
/// beside its place, and what a killed process left there goes with the next use.
/// Results are errno numbers, 0 for success.
class AtomicReplacement {
  public:
    AtomicReplacement() = default;
    /// Removes what was not committed.
    ~AtomicReplacement();
    AtomicReplacement(const AtomicReplacement&) = delete;
    AtomicReplacement& operator=(const AtomicReplacement&) = delete;

    enum class Existing { Refused, Replaced };

    /// Prepares to write `path`, which is no link. When that is forbidden this fails, before any
    /// work for the content is done.
    int Begin(const std::filesystem::path& path, Existing existing);

    /// As Begin with Existing::Replaced. Until this object ends, every other Lock on the path
    /// waits, whatever process it is in; EBUSY after some seconds.
    int Lock(const std::filesystem::path& path);

    /// Writes the whole content and puts it in its place; at most once.
    int Commit(std::string_view content);

    /// What to remove should the process end now; null when there is nothing.
    const std::filesystem::path::value_type* temporary() const {
        return visible_ ? temporary_.c_str() : nullptr;
    }

  private:
    int Open(const std::filesystem::path& path, Existing existing, int nameless);
    int OpenNamed();
    int AppearAs(const std::filesystem::path& name) const;
    int TakePlace();

    std::filesystem::path target_;
    std::filesystem::path temporary_;
    Existing existing_ = Existing::Refused;
    int descriptor_ = -1;
    bool visible_ = false;  ///< the content is in `temporary_`, no file without a name
};

}  // namespace imgbasic
