#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "lib/image/dither/map_forms.h"

namespace imgbasic {
namespace {

/// Thresholds for differences of n bits, n from 1 to 8; rows are y % 4, columns x % 4. The last
/// four grow from the 4 x 4 matrix by repeating its bits, though not evenly everywhere.
constexpr uint8_t kThresholds[8][4][4] = {
    {{0, 1, 0, 1}, {1, 0, 1, 0}, {0, 1, 0, 1}, {1, 0, 1, 0}},
    {{0, 2, 0, 2}, {3, 1, 3, 1}, {0, 2, 0, 2}, {3, 1, 3, 1}},
    {{0, 4, 1, 5}, {6, 2, 7, 3}, {1, 5, 0, 4}, {7, 3, 6, 2}},
    {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}},
    {{0, 17, 4, 21}, {25, 8, 29, 12}, {6, 23, 2, 19}, {31, 14, 27, 10}},
    {{0, 34, 8, 42}, {50, 17, 59, 25}, {13, 46, 4, 38}, {63, 29, 55, 21}},
    {{0, 68, 17, 87}, {102, 34, 119, 51}, {25, 93, 8, 76}, {127, 59, 110, 42}},
    {{0, 136, 34, 170}, {204, 68, 238, 102}, {51, 187, 17, 153}, {255, 119, 221, 85}},
};

constexpr std::array<OrderedOffsets, 4> MakeOffsets() {
    std::array<OrderedOffsets, 4> rows{};
    for (size_t y = 0; y < 4; ++y) {
        for (size_t x = 0; x < 4; ++x) {
            for (size_t bits = 1; bits <= 8; ++bits) {
                rows[y].offsets[x][bits] =
                    static_cast<int8_t>(kThresholds[bits - 1][y][x] - (1 << (bits - 1)));
            }
        }
    }
    return rows;
}

uint32_t Dithered(uint32_t color, uint32_t closest, const int8_t (&offsets)[16]) {
    uint32_t word = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int value = ChannelOf(color, channel);
        const auto distance = static_cast<unsigned>(std::abs(value - ChannelOf(closest, channel)));
        const int moved = value + offsets[std::bit_width(distance)];
        word |= static_cast<uint32_t>(std::clamp(moved, 0, 255)) << (8 * channel);
    }
    return word;
}

}  // namespace

void MapOrderedRowScalar(ClosestEntryLookup& lookup, const uint32_t* colors, uint8_t* indices,
                         size_t width, const RGBA16* /*ahead*/, const OrderedOffsets& row) {
    const uint32_t* entries = lookup.Tables().colors;
    for (size_t x = 0; x < width; ++x) {
        const uint32_t closest = entries[lookup.Find(colors[x])];
        indices[x] = lookup.Find(Dithered(colors[x], closest, row.offsets[x % 4]));
    }
}

const OrderedOffsets& OrderedOffsetsOf(int32_t y) {
    static constexpr auto kOffsets = MakeOffsets();
    return kOffsets[static_cast<size_t>(y) % kOffsets.size()];
}

}  // namespace imgbasic
