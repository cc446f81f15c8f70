#pragma once

#include <cstddef>
#include <cstdint>

// Colours as KVBitmap keeps them: words with 8 bits a channel, blue lowest, then green, red and
// alpha. Channels are numbered in that order. The functions have internal linkage, since files
// compiled for one instruction set use them too.
namespace imgbasic {

constexpr size_t kColorChannels = 4;
constexpr size_t kAlphaChannel = 3;

static constexpr int ChannelOf(uint32_t word, size_t channel) {
    return static_cast<int>(word >> (8 * channel) & 0xFF);
}

/// The colour that a pixel counts as: whatever a fully transparent one hides is zero.
static constexpr uint32_t VisibleColor(uint32_t pixel) {
    return pixel >> 24 == 0 ? 0 : pixel;
}

// Colour space divided into cells: of each channel the top `kBits` bits, alpha's highest. An
// opaque image thus stays within one run of cells.

template <int kBits>
static constexpr size_t kCellCount = size_t{1} << (4 * kBits);

/// The number of a colour's cell.
template <int kBits>
static constexpr uint32_t CellOf(uint32_t word) {
    constexpr uint32_t kLevels = (1U << kBits) - 1;
    return (word >> (8 - kBits) & kLevels) | (word >> (16 - 2 * kBits) & kLevels << kBits) |
           (word >> (24 - 3 * kBits) & kLevels << 2 * kBits) |
           (word >> (32 - 4 * kBits) & kLevels << 3 * kBits);
}

/// The top bits of a channel in a cell.
template <int kBits>
static constexpr int CellLevel(uint32_t cell, size_t channel) {
    return static_cast<int>(cell >> (kBits * channel) & ((1U << kBits) - 1));
}

}  // namespace imgbasic
