#pragma once

#include <algorithm>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

// Channels of files and channels of documents, 0..kFullScale. A file's value comes back from the
// way there and back at either depth, and so does a document's value at 16 bits: the steps of a
// file's 16-bit scale are the finer ones.

constexpr uint16_t FromDepth8(uint8_t value) {
    return static_cast<uint16_t>(value * 256);
}

constexpr uint8_t ToDepth8(uint16_t value) {
    return static_cast<uint8_t>(std::min((value + 128) / 256, 255));
}

constexpr uint16_t FromDepth16(uint16_t value) {
    return static_cast<uint16_t>((uint64_t{value} * kFullScale + 32767) / 65535);
}

constexpr uint16_t ToDepth16(uint16_t value) {
    const uint64_t clamped = std::min(value, kFullScale);
    return static_cast<uint16_t>((clamped * 65535 + kFullScale / 2) / kFullScale);
}

}  // namespace imgbasic::host
