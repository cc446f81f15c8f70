#include "lib/image/kv_bitmap.h"

#include <algorithm>
#include <array>
#include <bit>
#include <new>
#include <utility>

namespace imgbasic {
namespace {

static_assert(std::endian::native == std::endian::little, "pixel words are stored blue first");

constexpr uint64_t kPaletteBytes = kPaletteSlots * sizeof(uint32_t);

uint64_t PaddedStride(int32_t width) {
    return (static_cast<uint64_t>(width) + 3) & ~uint64_t{3};
}

// No product of two 31-bit sizes and 4 leaves 64 bits.
uint64_t BlockSize(int32_t width, int32_t height, bool indexed) {
    const auto rows = static_cast<uint64_t>(height);
    return indexed ? kPaletteBytes + PaddedStride(width) * rows
                   : static_cast<uint64_t>(width) * rows * sizeof(uint32_t);
}

}  // namespace

KVBitmap::KVBitmap(int32_t width, int32_t height, uint32_t paletteCount)
    : KVBitmap(width, height, paletteCount, {}) {
    if (width >= 1 && height >= 1 && paletteCount <= kPaletteSlots) {
        block_ = AllocateZeroed(BlockSize(width, height, IsIndexed()));
    }
}

KVBitmap::KVBitmap(int32_t width, int32_t height, uint32_t paletteCount,
                   std::vector<uint8_t> compressedPixels)
    : width_(width),
      height_(height),
      paletteCount_(paletteCount),
      compressedPixels_(std::move(compressedPixels)),
      firstRow_(kPaletteBytes),
      rowStride_(PaddedStride(width)) {
}

KVBitmap::~KVBitmap() = default;

bool KVBitmap::EnsurePixels() const {
    return block_ != nullptr;
}

std::span<uint32_t> KVBitmap::WordSpan() const {
    if (IsIndexed() || !EnsurePixels()) {
        return {};
    }
    return {reinterpret_cast<uint32_t*>(block_.get()),
            static_cast<size_t>(width_) * static_cast<size_t>(height_)};
}

std::span<uint32_t> KVBitmap::PaletteSpan() const {
    if (!EnsurePixels()) {
        return {};
    }
    return {reinterpret_cast<uint32_t*>(block_.get()), paletteCount_};
}

std::span<uint8_t> KVBitmap::RowSpan(int32_t y) const {
    if (!IsIndexed() || y < 0 || y >= height_ || !EnsurePixels()) {
        return {};
    }
    return {block_.get() + firstRow_ + rowStride_ * static_cast<uint64_t>(y),
            static_cast<size_t>(width_)};
}

std::unique_ptr<KVBitmap> CopyBitmap(const KVBitmap& source) {
    if (source.identifier >= 0 || !source.EnsurePixels()) {
        return nullptr;
    }
    std::unique_ptr<KVBitmap> copy(
        new (std::nothrow) KVBitmap(source.Width(), source.Height(), source.PaletteCount()));
    if (copy == nullptr || !copy->EnsurePixels()) {
        return nullptr;
    }
    if (!source.IsIndexed()) {
        std::ranges::copy(source.Words(), copy->Words().begin());
        return copy;
    }
    std::ranges::copy(source.Palette(), copy->Palette().begin());
    for (int32_t y = 0; y < source.Height(); ++y) {
        std::ranges::copy(source.IndexRow(y), copy->IndexRow(y).begin());
    }
    return copy;
}

bool ExpandIndexed(KVBitmap& destination, const KVBitmap& source) {
    if (destination.IsIndexed() || destination.Width() != source.Width() ||
        destination.Height() != source.Height() || !destination.EnsurePixels() ||
        !source.EnsurePixels()) {
        return false;
    }
    if (!source.IsIndexed()) {
        std::ranges::copy(source.Words(), destination.Words().begin());
        return true;
    }
    std::array<uint32_t, kPaletteSlots> colors{};
    std::ranges::copy(source.Palette(), colors.begin());
    uint32_t* word = destination.Words().data();
    for (int32_t y = 0; y < source.Height(); ++y) {
        for (const uint8_t index : source.IndexRow(y)) {
            *word++ = colors[index];
        }
    }
    return true;
}

}  // namespace imgbasic
