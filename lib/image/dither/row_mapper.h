#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "lib/base/zeroed_block.h"
#include "lib/image/dither/closest_entry_lookup.h"
#include "lib/image/dither/map_forms.h"

namespace imgbasic {

/// How pixels get their palette entry.
enum DitherKind : int32_t {
    NoDither = 0,
    OrderedDither = 1,
    SmallDiffusion = 2,  ///< spreads the error of the pixel's own colour
    LargeDiffusion = 3   ///< spreads the error of what the pixel became by diffusion
};

/// Maps an image to a palette, row by row from the top.
class RowMapper {
  public:
    /// `width` is that of the rows. The palette must be finished, live as long and stay as it is.
    RowMapper(const ReducePalette& palette, int32_t ditherKind, size_t width);
    /// False for a palette of no or more than 256 entries, another dither kind, or when memory ran
    /// out; then nothing else may be called.
    bool IsReady() const { return ready_; }

    /// The palette indices of the next row, whose visible colours these are; both as long as the
    /// width. `ahead`: see map_forms.h.
    void MapRow(std::span<const uint32_t> colors, std::span<uint8_t> indices, const RGBA16* ahead);

  private:
    void MapDiffused(std::span<const uint32_t> colors, std::span<uint8_t> indices,
                     const RGBA16* ahead);

    ClosestEntryLookup lookup_;
    std::optional<RegionLookup> regions_;  ///< for diffusion
    int32_t kind_;
    int32_t y_ = 0;
    /// For diffusion: two rows that change places (see ErrorRows).
    ZeroedBlock errorBlock_;
    ColorError* errorsAbove_ = nullptr;
    ColorError* errors_ = nullptr;
    bool ready_;
};

}  // namespace imgbasic
