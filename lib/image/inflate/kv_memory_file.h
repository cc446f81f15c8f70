#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "lib/base/kv_string.h"

namespace imgbasic {

/// Bytes in memory, read from front to back as a file is. Borrows the bytes.
class KVMemoryFile {
  public:
    /// `name` is what log lines call the file; it may be empty.
    explicit KVMemoryFile(std::span<const uint8_t> bytes, KVString name = {});

    const KVString& Name() const { return name_; }
    /// Copies the next bytes, as many as there are but at most what `destination` holds, and
    /// returns their number.
    size_t Read(std::span<uint8_t> destination);
    /// The bytes that have not been read yet.
    std::span<const uint8_t> Rest() const { return rest_; }

  private:
    std::span<const uint8_t> rest_;
    KVString name_;
};

}  // namespace imgbasic
