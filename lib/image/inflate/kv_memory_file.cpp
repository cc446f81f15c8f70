#include "lib/image/inflate/kv_memory_file.h"

#include <algorithm>
#include <utility>

namespace imgbasic {

KVMemoryFile::KVMemoryFile(std::span<const uint8_t> bytes, KVString name)
    : rest_(bytes), name_(std::move(name)) {
}

size_t KVMemoryFile::Read(std::span<uint8_t> destination) {
    const size_t count = std::min(destination.size(), rest_.size());
    std::ranges::copy(rest_.first(count), destination.begin());
    rest_ = rest_.subspan(count);
    return count;
}

}  // namespace imgbasic
