#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/raster_file.h"

namespace imgbasic::host {

/// A colour of 8 bits a channel: alpha, red, green, blue. Sorted, translucent ones come first, as
/// a PNG wants them.
using PaletteColor = std::array<uint8_t, 4>;

/// How a file stores the pixels of a picture.
struct SampleLayout {
    int bands = 4;  ///< 1 gray or index, 2 gray and alpha, 3 RGB, 4 RGBA
    int depth = 8;  ///< bits a sample: 8 or 16, also 1 for black and white, 1, 2 or 4 for an index
    bool overWhite = false;               ///< translucent pixels are laid over white
    std::vector<PaletteColor> palette{};  ///< sorted; when there is one, the samples are indices
};

/// What the pixels, rounded to a depth, have in common.
struct PictureTraits {
    bool opaque = true;
    bool gray = true;
    bool blackAndWhite = true;            ///< and nothing else; opaque
    std::vector<PaletteColor> palette{};  ///< all colours, sorted; empty when there are over 256
};

/// Looks at every pixel as a file of `depth`, 8 or 16 bits a channel, would hold it. A picture
/// counts as opaque at 16 bits when no alpha is more than a document's step below full, which the
/// sums of an interpolation leave behind. Only at 8 bits does it have a palette.
PictureTraits TraitsOf(const Picture& picture, int depth);

/// The samples of a picture, row by row. Borrows both.
class SampleRows {
  public:
    SampleRows(const Picture& picture, const SampleLayout& layout);

    /// Bytes of a row; samples of less than 8 bits take a byte each.
    size_t RowSize() const;

    /// Writes row `y`, 16-bit samples in the machine's order, black and white as 0 and 255.
    /// Several threads may call it at once.
    void Fill(int32_t y, std::byte* out) const;

  private:
    void FillFromBytes(std::span<const RGB8> row, uint8_t* out) const;
    void FillIndices(std::span<const std::array<uint8_t, 4>> row, uint8_t* out) const;
    void KeepLowerSamples(int32_t y, std::span<std::array<uint16_t, 4>> row) const;

    const Picture& picture_;
    const SampleLayout& layout_;
    bool keepsLowerSamples_;
};

}  // namespace imgbasic::host
