#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "lib/base/platform.h"

#ifndef _WIN32
#include <sys/mman.h>
#endif

namespace imgbasic {

/// Bytes between two pages that nothing can be read from or written to, close to one of them.
class GuardedBytes {
  public:
    enum Side { Front, Back };

    GuardedBytes(size_t size, Side side) : size_(size), pages_((size / kPage + 1) * kPage) {
        mapping_ = Map(pages_ + 2 * kPage);
        bytes_ = mapping_ + kPage + (side == Front ? 0 : pages_ - size);
    }
    ~GuardedBytes() {
#ifdef _WIN32
        VirtualFree(mapping_, 0, MEM_RELEASE);
#else
        munmap(mapping_, pages_ + 2 * kPage);
#endif
    }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    std::span<uint8_t> Span() {
        return {bytes_, size_};
    }

  private:
    static constexpr size_t kPage = 4096;

    // The whole range without access, then all but the first and last page with it.
    uint8_t* Map(size_t size) const {
#ifdef _WIN32
        void* const mapping = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
        auto* const inner = static_cast<uint8_t*>(mapping) + kPage;
        VirtualAlloc(inner, pages_, MEM_COMMIT, PAGE_READWRITE);
#else
        void* const mapping = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        mprotect(static_cast<uint8_t*>(mapping) + kPage, pages_, PROT_READ | PROT_WRITE);
#endif
        return static_cast<uint8_t*>(mapping);
    }

    size_t size_;
    size_t pages_;
    uint8_t* mapping_;
    uint8_t* bytes_;
};

}  // namespace imgbasic
