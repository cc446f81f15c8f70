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

// Colour space divided into cells of 8 x 8 x 8 x 8 colours.
constexpr int kCellShift = 3;
constexpr size_t kCellLevelBits = 8 - kCellShift;
constexpr size_t kColorCells = size_t{1} << (kColorChannels * kCellLevelBits);

/// The number of a colour's cell: the top bits of each channel, alpha's highest. An opaque image
/// thus stays within one run of cells.
static constexpr uint32_t CellOf(uint32_t word) {
    return (word >> 3 & 0x1F) | (word >> 6 & 0x3E0) | (word >> 9 & 0x7C00) | (word >> 12 & 0xF8000);
}

/// The least value of a channel in a cell; the greatest is 7 more.
static constexpr int CellFloor(uint32_t cell, size_t channel) {
    return static_cast<int>(cell >> (kCellLevelBits * channel) & 0x1F) << kCellShift;
}

}  // namespace imgbasic
