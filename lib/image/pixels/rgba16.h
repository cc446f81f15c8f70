#pragma once

#include <cstdint>

namespace imgbasic {

/// One pixel of every host buffer: straight (unassociated) alpha, channels from 0 to kFullScale.
struct RGBA16 {
    uint16_t r;
    uint16_t g;
    uint16_t b;
    uint16_t a;

    friend bool operator==(const RGBA16&, const RGBA16&) = default;
};

static_assert(sizeof(RGBA16) == 8, "host rows are packed, 8 bytes a pixel");
static_assert(alignof(RGBA16) == 2, "host buffers begin at any multiple of 2");

/// Full intensity and full opacity; an 8-bit value v is stored as v * 256.
constexpr uint16_t kFullScale = 0xFF00;

}  // namespace imgbasic
