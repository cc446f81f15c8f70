#include "lib/image/palette/distinct_colors.h"

#include <array>

#include "lib/image/palette/color_word.h"

namespace imgbasic {
namespace {

/// Which entry a colour has, by open addressing. The slots are a quarter full at most, so that a
/// search meets a free one soon; the multiplier is 2^32 over the golden ratio (Knuth), whose upper
/// bits scatter colours that differ in few bits.
class EntryTable {
  public:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    /// The slot that holds the colour, or the free one where it belongs.
    size_t SlotOf(uint32_t color) const {
        size_t slot = color * 0x9E3779B1U >> (32 - kSlotBits);
        while (slots_[slot].entryPlus1 != 0 && slots_[slot].color != color) {
            slot = (slot + 1) % kSlots;
        }
        return slot;
    }
    size_t EntryAt(size_t slot) const { return slots_[slot].entryPlus1 - size_t{1}; }
    void Put(size_t slot, uint32_t color, size_t entry) {
        slots_[slot] = {color, static_cast<uint32_t>(entry) + 1};
    }

  private:
    static constexpr unsigned kSlotBits = 10;
    static constexpr size_t kSlots = size_t{1} << kSlotBits;
    static_assert(kSlots >= 4 * 256, "a palette has 256 entries at most");

    struct Slot {
        uint32_t color;
        uint32_t entryPlus1;
    };
    std::array<Slot, kSlots> slots_{};
};

}  // namespace

bool CollectDistinctColors(const CountedColors& image, size_t limit,
                           KVArray<KVColorPalette>& entries) {
    EntryTable table;
    for (size_t i = 0; i < image.colors.size(); ++i) {
        const uint32_t color = VisibleColor(image.colors[i]);
        const size_t slot = table.SlotOf(color);
        size_t entry = table.EntryAt(slot);
        if (entry == EntryTable::kNone) {
            if (entries.size() == limit) {
                return false;
            }
            entry = entries.size();
            entries.emplace_back(color, 0);
            table.Put(slot, color, entry);
        }
        entries[entry].count += image.Count(i);
    }
    return true;
}

}  // namespace imgbasic
