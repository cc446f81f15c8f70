#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "lib/base/kv_array.h"
#include "lib/image/palette/kv_color_palette.h"

namespace imgbasic {

/// The distinct colours of an image, in order of first appearance, with their pixel counts, as
/// long as they are few.
class DistinctColors {
  public:
    /// At most `limit` colours, 256 at most.
    explicit DistinctColors(size_t limit) : limit_(limit) {}

    /// Counts pixels up to the first that would be one colour too many; answers how many.
    size_t Add(std::span<const uint32_t> colors);
    /// The same for `count` pixels of one colour: false when it would be one colour too many.
    bool Add(uint32_t color, uint32_t count);

    const KVArray<KVColorPalette>& Entries() const { return entries_; }

  private:
    /// Which entry a colour has, by open addressing. The slots are a quarter full at most, so that
    /// a search meets a free one soon.
    static constexpr unsigned kSlotBits = 10;
    static constexpr size_t kSlots = size_t{1} << kSlotBits;
    static_assert(kSlots >= 4 * 256, "a palette has 256 entries at most");

    struct Slot {
        uint32_t color;
        uint32_t entryPlus1;  ///< 0: free
    };

    size_t limit_;
    KVArray<KVColorPalette> entries_;
    std::array<Slot, kSlots> slots_{};
};

}  // namespace imgbasic
