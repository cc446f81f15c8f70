#pragma once

#include <algorithm>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

// Channels of files and channels of documents, 0..kFullScale, each the nearest value of the other
// scale. At 8 bits a file's value comes back from the way there and back, and at 16 bits a
// document's does. The 65,536 values of a 16-bit file cannot all have one of the document's 65,281
// to themselves: 257 q + 128 and 257 q + 129 both become 256 q + 128, for every q below 255. That
// becomes the higher one again, so who wants the lower one back must have remembered it.

constexpr uint16_t FromDepth8(uint8_t value) {
    return static_cast<uint16_t>(value * 256);
}

constexpr uint8_t ToDepth8(uint16_t value) {
    return static_cast<uint8_t>((std::min(value, kFullScale) + 128) / 256);
}

/// value x 256 / 257
constexpr uint16_t FromDepth16(uint16_t value) {
    return static_cast<uint16_t>(value - (value + 128) / 257);
}

/// value x 257 / 256
constexpr uint16_t ToDepth16(uint16_t value) {
    const uint16_t clamped = std::min(value, kFullScale);
    return static_cast<uint16_t>(clamped + (clamped + 128) / 256);
}

/// The lower one of two file values that stand for the same document value, by its q as above:
/// one of the 255 values beyond full scale that no other file value becomes.
constexpr uint16_t MarkedFromDepth16(uint16_t value) {
    return value % 257 == 128 ? static_cast<uint16_t>(kFullScale + 1 + value / 257)
                              : FromDepth16(value);
}

/// The document value that such a mark stands for.
constexpr uint16_t Unmarked(uint16_t mark) {
    return static_cast<uint16_t>((mark - kFullScale - 1) * 256 + 128);
}

/// Whether a file value is the higher one of two such.
constexpr bool HasLowerTwin(uint16_t value) {
    return value % 257 == 129;
}

}  // namespace imgbasic::host
