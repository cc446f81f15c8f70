#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

#include "lib/base/atomic_replacement.h"

namespace imgbasic::host {

/// An output, which appears under its name whole or not at all. Throws FileError.
class AtomicFile {
  public:
    /// Reserves the place, so that what forbids writing is found before the work for it is done.
    /// An existing file is an error unless `overwrite`.
    AtomicFile(const std::filesystem::path& path, bool overwrite);
    /// Removes what was not committed.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Writes the whole content and lets it appear; at most once. Without `overwrite`, a file that
    /// has come into being since stays.
    void Commit(std::span<const std::byte> content);

  private:
    [[noreturn]] void Fail(int error) const;

    std::filesystem::path shown_;  ///< as the user named it
    AtomicReplacement file_;
};

#ifndef _WIN32
/// From here on a signal that ends the process removes an output that was begun.
void RemoveBegunOutputOnSignals();
#endif

}  // namespace imgbasic::host
