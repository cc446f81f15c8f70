#include "lib/image/palette/distinct_colors.h"

namespace imgbasic {

size_t DistinctColors::Add(std::span<const uint32_t> colors) {
    size_t i = 0;
    while (i < colors.size()) {
        // Pictures of few colours have long runs of one.
        const size_t first = i;
        do {
            ++i;
        } while (i < colors.size() && colors[i] == colors[first]);
        if (!Add(colors[first], static_cast<uint32_t>(i - first))) {
            return first;
        }
    }
    return i;
}

bool DistinctColors::Add(uint32_t color, uint32_t count) {
    // 2^32 over the golden ratio (Knuth): the upper bits scatter colours that differ in few bits.
    size_t slot = color * 0x9E3779B1U >> (32 - kSlotBits);
    while (slots_[slot].entryPlus1 != 0 && slots_[slot].color != color) {
        slot = (slot + 1) % kSlots;
    }
    if (slots_[slot].entryPlus1 == 0) {
        if (entries_.size() == limit_) {
            return false;
        }
        entries_.emplace_back(color, 0);
        slots_[slot] = {color, static_cast<uint32_t>(entries_.size())};
    }
    entries_[slots_[slot].entryPlus1 - 1].count += count;
    return true;
}

}  // namespace imgbasic
