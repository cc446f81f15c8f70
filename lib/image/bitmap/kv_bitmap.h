#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "lib/base/kv_array.h"
#include "lib/base/zeroed_block.h"

namespace imgbasic {

/// Entries of an indexed bitmap's palette area; its palette count says how many are in use.
constexpr uint32_t kPaletteSlots = 256;

struct RBSize {
    int32_t width = 0;
    int32_t height = 0;
};

/// The bitmap that colour reduction works on: 32-bit pixels, or 8-bit indices into a palette of
/// 1 to 256 colours. A pixel or palette word holds blue in bits 0 to 7, green in 8 to 15, red in
/// 16 to 23 and alpha in 24 to 31. A bitmap without pixels (memory ran out, sizes below 1, a
/// damaged compressed stream) answers its accessors with empty spans; nothing here throws.
class KVBitmap {
  public:
    /// All pixels zero: 32-bit for a palette count of 0, indexed for 1 to 256. A size below 1,
    /// a greater palette count or a lack of memory give a bitmap without pixels.
    KVBitmap(int32_t width, int32_t height, uint32_t paletteCount = 0);
    /// Pixels that are inflated from `compressedPixels`, a stream that KVInflate reads, when
    /// something first needs them. The stream holds width * height words; or for an indexed
    /// bitmap 1024 bytes of palette and rows padded to a multiple of 4 bytes; or packed, only
    /// `paletteCount` palette words and rows of `width` bytes.
    KVBitmap(int32_t width, int32_t height, uint32_t paletteCount,
             std::vector<uint8_t> compressedPixels);
    virtual ~KVBitmap();
    KVBitmap(const KVBitmap&) = delete;
    KVBitmap& operator=(const KVBitmap&) = delete;

    int32_t Width() const { return width_; }
    int32_t Height() const { return height_; }
    /// 0 for a 32-bit bitmap, 1 to 256 for an indexed one.
    uint32_t PaletteCount() const { return paletteCount_; }
    bool IsIndexed() const { return paletteCount_ != 0; }

    /// Inflates compressed pixels unless the bitmap is locked or has an identifier; true when
    /// there are pixels now. Every accessor does this first.
    bool EnsurePixels() const;

    /// The pixels of a 32-bit bitmap, rows top to bottom without padding.
    std::span<const uint32_t> Words() const { return WordSpan(); }
    std::span<uint32_t> Words() { return WordSpan(); }
    /// The palette of an indexed bitmap: its palette count's words.
    std::span<const uint32_t> Palette() const { return PaletteSpan(); }
    std::span<uint32_t> Palette() { return PaletteSpan(); }
    /// Row `y` of an indexed bitmap, one index a pixel; empty for a row outside the bitmap.
    std::span<const uint8_t> IndexRow(int32_t y) const { return RowSpan(y); }
    std::span<uint8_t> IndexRow(int32_t y) { return RowSpan(y); }

    /// -1 when the bitmap has none. Compressed pixels are inflated only while it is negative.
    int32_t identifier = -1;
    /// While set, nothing is inflated.
    bool locked = false;
    /// Further data of a bitmap that other users than colour reduction keep with it.
    KVArray<RBSize> sizeList;
    KVArray<int32_t> integerList;

  private:
    void InflatePixels() const;
    std::span<uint32_t> WordSpan() const;
    std::span<uint32_t> PaletteSpan() const;
    std::span<uint8_t> RowSpan(int32_t y) const;

    int32_t width_;
    int32_t height_;
    uint32_t paletteCount_;
    std::vector<uint8_t> compressedPixels_;

    // The pixel block and, for an indexed bitmap, where in it the rows begin and how far they
    // are apart. Inflating fills them in: a cache, not a change that a reader could see.
    mutable ZeroedBlock block_;
    mutable uint64_t firstRow_ = 0;
    mutable uint64_t rowStride_ = 0;
};

/// A deep copy with pixels and palette only; null when the source has an identifier or no
/// pixels, or when memory runs out.
std::unique_ptr<KVBitmap> CopyBitmap(const KVBitmap& source);

/// Copies `source` into `destination`, a 32-bit bitmap of the same size; an indexed source
/// through its palette, where an index beyond the palette count is the colour zero. False, and
/// nothing changed, when the two do not fit or one has no pixels.
bool ExpandIndexed(KVBitmap& destination, const KVBitmap& source);

}  // namespace imgbasic
