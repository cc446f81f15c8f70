#include "lib/image/palette/thin_palette.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace imgbasic {
namespace {

int32_t Square(int32_t value) {
    return value * value;
}

int32_t DistanceBetween(const KVColorPalette& a, const KVColorPalette& b) {
    return Square(a.blue - b.blue) + Square(a.green - b.green) + Square(a.red - b.red) +
           Square(a.alpha - b.alpha);
}

void MeasureEntry(KVArray<KVColorPalette>& entries, size_t index) {
    constexpr KVColorPalette kGray(0x7F7F7F7F, 0);
    KVColorPalette& entry = entries[index];
    entry.grayDistance = DistanceBetween(entry, kGray);
    entry.nearest = -1;
    for (size_t other = 0; other < entries.size(); ++other) {
        const int32_t distance = DistanceBetween(entry, entries[other]);
        if (other != index && (entry.nearest < 0 || distance < entry.nearestDistance)) {
            entry.nearest = static_cast<int32_t>(other);
            entry.nearestDistance = distance;
        }
    }
}

}  // namespace

// Thinning means to drop, until `limit` entries are left, the one that is closest to another (of
// equals the one nearest to mid-grey, of equals in that too the last). Entries that were dropped
// still count as neighbours. So no drop changes any distance: every round would sort by the same
// keys and drop the last of the same order. Dropping one by one is keeping the first `limit` of
// that order, sorted once.
void ThinPalette(KVArray<KVColorPalette>& entries, size_t limit) {
    if (entries.size() <= limit) {
        return;
    }
    for (size_t index = 0; index < entries.size(); ++index) {
        MeasureEntry(entries, index);
    }
    std::vector<size_t> order(entries.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::ranges::stable_sort(order, [&](size_t a, size_t b) {
        const KVColorPalette& first = entries[a];
        const KVColorPalette& second = entries[b];
        return first.nearestDistance != second.nearestDistance
                   ? first.nearestDistance > second.nearestDistance
                   : first.grayDistance > second.grayDistance;
    });
    order.resize(limit);
    std::ranges::sort(order);
    KVArray<KVColorPalette> kept;
    for (const size_t index : order) {
        kept.push_back(entries[index]);
    }
    entries = std::move(kept);
}

}  // namespace imgbasic
