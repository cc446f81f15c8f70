#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

namespace imgbasic::host {

/// A file that appears under its name whole or not at all: it is written beside its place and
/// renamed. Throws FileError.
class AtomicFile {
  public:
    /// Reserves the place, so that what forbids writing is found before the work for it is done.
    /// An existing file is an error unless `overwrite`.
    AtomicFile(const std::filesystem::path& path, bool overwrite);
    /// Removes what was not committed.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Writes the whole content and lets it appear; at most once.
    void Commit(std::span<const std::byte> content);

  private:
    [[noreturn]] void Fail(int error) const;

    std::filesystem::path shown_;      ///< as the user named it
    std::filesystem::path target_;     ///< where links lead
    std::filesystem::path temporary_;  ///< empty when there is none (any more)
    int descriptor_ = -1;
};

}  // namespace imgbasic::host
