#include "lib/image/bitmap/kv_bitmap.h"

#include <algorithm>
#include <array>
#include <bit>
#include <new>
#include <utility>

#include "lib/image/inflate/kv_inflate.h"

namespace imgbasic {
namespace {

static_assert(std::endian::native == std::endian::little, "pixel words are stored blue first");

constexpr uint64_t kPaletteBytes = kPaletteSlots * sizeof(uint32_t);

// A compressed stream that announces more than this beyond the layout is not believed.
constexpr uint64_t kMostSurplus = uint64_t{64} << 10;

uint64_t PaddedStride(int32_t width) {
    return (static_cast<uint64_t>(width) + 3) & ~uint64_t{3};
}

bool IsPossible(int32_t width, int32_t height, uint32_t paletteCount) {
    return width >= 1 && height >= 1 && paletteCount <= kPaletteSlots;
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
    if (IsPossible(width, height, paletteCount)) {
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
    if (block_ == nullptr && !locked && identifier < 0 && !compressedPixels_.empty() &&
        IsPossible(width_, height_, paletteCount_)) {
        InflatePixels();
    }
    return block_ != nullptr;
}

void KVBitmap::InflatePixels() const {
    const uint64_t size = BlockSize(width_, height_, IsIndexed());
    const auto columns = static_cast<uint64_t>(width_);
    const auto rows = static_cast<uint64_t>(height_);
    const uint64_t paletteBytes = paletteCount_ * sizeof(uint32_t);
    const uint64_t least = IsIndexed() ? paletteBytes + columns * rows : size;
    InflatedBlock inflated = InflateMemory(compressedPixels_, least, size + kMostSurplus);
    block_ = std::move(inflated.bytes);
    if (block_ == nullptr || !IsIndexed() || static_cast<uint64_t>(inflated.size) == size) {
        return;
    }
    // Packed: laid out anew, or used as it is when there is no memory for that.
    ZeroedBlock padded = AllocateZeroed(size);
    if (padded == nullptr) {
        firstRow_ = paletteBytes;
        rowStride_ = columns;
        return;
    }
    const uint8_t* packed = block_.get();
    std::copy_n(packed, paletteBytes, padded.get());
    packed += paletteBytes;
    for (uint64_t y = 0; y < rows; ++y, packed += columns) {
        std::copy_n(packed, columns, padded.get() + firstRow_ + rowStride_ * y);
    }
    block_ = std::move(padded);
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
