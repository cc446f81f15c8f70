#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "lib/image/map_kinds.h"

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

/// What is added to a channel, by the position in the matrix and the channel's distance from the
/// nearest entry.
using Offsets = std::array<std::array<std::array<int16_t, 256>, 4>, 4>;

constexpr Offsets MakeOffsets() {
    Offsets offsets{};
    for (size_t y = 0; y < 4; ++y) {
        for (size_t x = 0; x < 4; ++x) {
            for (unsigned distance = 1; distance < 256; ++distance) {
                const int bits = std::bit_width(distance);
                offsets[y][x][distance] =
                    static_cast<int16_t>(kThresholds[bits - 1][y][x] - (1 << (bits - 1)));
            }
        }
    }
    return offsets;
}

constexpr Offsets kOffsets = MakeOffsets();

uint32_t Dithered(uint32_t color, uint32_t nearest, const std::array<int16_t, 256>& offsets) {
    uint32_t word = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int value = ChannelOf(color, channel);
        const int distance = std::abs(value - ChannelOf(nearest, channel));
        const int moved = value + offsets[static_cast<size_t>(distance)];
        word |= static_cast<uint32_t>(std::clamp(moved, 0, 255)) << (8 * channel);
    }
    return word;
}

}  // namespace

void MapOrdered(NearestLookup& lookup, const KVBitmap& source, KVBitmap& indexed) {
    const uint32_t* pixel = source.Words().data();
    for (int32_t y = 0; y < source.Height(); ++y) {
        const auto row = indexed.IndexRow(y);
        const auto& offsets = kOffsets[static_cast<size_t>(y) % 4];
        for (size_t x = 0; x < row.size(); ++x) {
            const uint32_t color = VisibleColor(*pixel++);
            row[x] = lookup.Find(color);
            const uint32_t dithered = Dithered(color, lookup.ColorAt(row[x]), offsets[x % 4]);
            if (dithered != color) {
                row[x] = lookup.Find(dithered);
            }
        }
    }
}

}  // namespace imgbasic
