#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "lib/image/palette/reduce_palette.h"
#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/row_kernel.h"

namespace imgbasic {

/// The host pixels of palette entries: their 8-bit channels times 256.
class HostPalette {
  public:
    explicit HostPalette(const ReducePalette& palette);
    void WriteRow(RGBA16* row, std::span<const uint8_t> indices, Store store) const;

  private:
    std::array<RGBA16, kMaxPaletteEntries> colors_{};
};

}  // namespace imgbasic
