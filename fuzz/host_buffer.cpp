#include "fuzz/host_buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace imgbasic {
namespace {

constexpr size_t kImageBytes = HostBuffer::kLargestImage * sizeof(RGBA16);
constexpr size_t kPage = 4096;
static_assert(kImageBytes % kPage == 0, "both ends of the mapped bytes are ends of pages");

/// Addresses without memory.
uint8_t* Reserve(size_t size) {
    void* addresses =
        mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (addresses == MAP_FAILED) {
        std::abort();
    }
    return static_cast<uint8_t*>(addresses);
}

void Protect(uint8_t* address, size_t size, int access) {
    if (mprotect(address, size, access) != 0) {
        std::abort();
    }
}

}  // namespace

HostBuffer::HostBuffer()
    : small_(Reserve(kImageBytes + 2 * kPage) + kPage),
      huge_(Reserve(kLargestSpan * sizeof(RGBA16))) {
    Protect(small_, kImageBytes, PROT_READ | PROT_WRITE);
}

RGBA16* HostBuffer::Image(size_t count, bool atEnd, uint32_t seed) {
    const size_t bytes = count * sizeof(RGBA16);
    uint8_t* image = small_ + (atEnd ? kImageBytes - bytes : 0);
    for (size_t i = 0; i < bytes; ++i) {
        seed = seed * 1103515245 + 12345;
        image[i] = static_cast<uint8_t>(seed >> 23);
    }
    return reinterpret_cast<RGBA16*>(image);
}

RGBA16* HostBuffer::Part(int32_t width, const PixelRect& rect) {
    for (int64_t y = rect.top; y < rect.bottom; ++y) {
        // A row of a few pixels lies in one page or in two.
        for (const int64_t x : {rect.left, rect.right - 1}) {
            const auto byte = static_cast<size_t>(y * width + x) * sizeof(RGBA16);
            exposed_.push_back(huge_ + byte / kPage * kPage);
            Protect(exposed_.back(), kPage, PROT_READ | PROT_WRITE);
        }
    }
    return reinterpret_cast<RGBA16*>(huge_);
}

void HostBuffer::HidePart() {
    for (uint8_t* page : exposed_) {
        Protect(page, kPage, PROT_NONE);
    }
    exposed_.clear();
}

}  // namespace imgbasic
