#include "lib/image/palette/quantize_palette.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "lib/image/palette/box_means.h"
#include "lib/image/palette/color_histogram.h"
#include "lib/image/palette/color_word.h"
#include "lib/image/palette/distinct_colors.h"
#include "lib/image/palette/median_cut.h"
#include "lib/image/palette/thin_palette.h"

namespace imgbasic {
namespace {

constexpr int32_t kFullPrecision = 8;

/// What a countSpec asks for.
struct PaletteSize {
    size_t limit;       ///< entries, 1 to 256
    int32_t precision;  ///< bits, 0 to kFullPrecision
};

PaletteSize SizeFor(int32_t countSpec) {
    if (countSpec >= 0) {
        const int32_t bits = std::min(countSpec, kFullPrecision);
        return {size_t{1} << bits, bits};
    }
    const size_t limit = countSpec < -256 ? 256 : static_cast<size_t>(-countSpec);
    return {limit, limit < 17 ? 4 : kFullPrecision};
}

/// The palette's entries from a median cut over the coarsest colours that are still enough for the
/// precision, if any are, else over the finest.
void CutIntoEntries(const std::vector<ColorHistogram::Part>& parts, PaletteSize size,
                    KVArray<KVColorPalette>& entries) {
    const bool full = size.precision == kFullPrecision;
    const size_t threshold = full ? 64 : (size_t{1} << size.precision) / 2;
    int shift = full ? 5 : 6;
    auto coarse = CoarseColors(parts, shift);
    while (shift > kLeastCoarseShift && coarse.size() <= threshold) {
        --shift;
        coarse = CoarseColors(parts, shift);
    }
    const ColorBoxes boxes = DivideIntoBoxes(coarse, 256 >> shift);
    AddBoxMeans(parts, coarse, shift, boxes, entries);
    ThinPalette(entries, size.limit);
}

/// Both ways to count an image at once: its distinct colours until they are too many, then the
/// histogram, which takes over what has been counted.
class ImageColors {
  public:
    explicit ImageColors(size_t limit) : distinct_(limit) {}

    /// False when memory runs out.
    bool Add(std::span<const uint32_t> colors, const RGBA16* ahead) {
        const size_t counted = histogram_ ? 0 : distinct_.Add(colors);
        if (counted == colors.size()) {
            return true;
        }
        if (!StartHistogram()) {
            return false;
        }
        histogram_->Add(colors.subspan(counted), ahead);
        return true;
    }
    bool Add(uint32_t color, uint32_t count) {
        if (!histogram_ && distinct_.Add(color, count)) {
            return true;
        }
        if (!StartHistogram()) {
            return false;
        }
        histogram_->Add(color, count);
        return true;
    }

    void MakePalette(PaletteSize size, ReducePalette& palette) {
        if (histogram_) {
            palette.entries.clear();
            CutIntoEntries(histogram_->Finish(), size, palette.entries);
        } else {
            palette.entries = distinct_.Entries();
        }
        FinishPalette(palette);
    }

  private:
    bool StartHistogram() {
        if (histogram_) {
            return true;
        }
        histogram_.emplace();
        if (!histogram_->IsReady()) {
            return false;
        }
        for (const KVColorPalette& entry : distinct_.Entries()) {
            histogram_->Add(entry.Word(), entry.count);
        }
        return true;
    }

    DistinctColors distinct_;
    std::optional<ColorHistogram> histogram_;
};

}  // namespace

bool QuantizeRows(ReducePalette& palette, ColorRows& rows, int32_t countSpec) {
    if (rows.PixelCount() == 0 || rows.PixelCount() > std::numeric_limits<uint32_t>::max()) {
        return false;
    }
    const PaletteSize size = SizeFor(countSpec);
    ImageColors colors(size.limit);
    for (int32_t y = 0; y < rows.Height(); ++y) {
        if (!colors.Add(rows.Row(y), rows.Ahead(y))) {
            return false;
        }
    }
    colors.MakePalette(size, palette);
    return true;
}

bool QuantizeCounted(ReducePalette& palette, std::span<const KVColorPalette> counted,
                     int32_t countSpec) {
    const PaletteSize size = SizeFor(countSpec);
    ImageColors colors(size.limit);
    for (const KVColorPalette& color : counted) {
        if (!colors.Add(VisibleColor(color.Word()), color.count)) {
            return false;
        }
    }
    colors.MakePalette(size, palette);
    return true;
}

bool QuantizePalette(ReducePalette& palette, const KVBitmap* bitmap, int32_t countSpec) {
    ColorRows rows(bitmap);
    return QuantizeRows(palette, rows, countSpec);
}

}  // namespace imgbasic
