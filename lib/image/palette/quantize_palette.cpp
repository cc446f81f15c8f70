#include "lib/image/palette/quantize_palette.h"

#include <algorithm>
#include <limits>

#include "lib/image/palette/box_means.h"
#include "lib/image/palette/color_histogram.h"
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

struct CoarseColors {
    std::vector<CoarseColor> colors;
    int shift;
};

/// The coarsest colours that are still enough for the precision, if any are; else the finest.
CoarseColors ChooseCoarse(const ColorHistogram& histogram, int32_t precision) {
    const bool full = precision == kFullPrecision;
    const size_t threshold = full ? 64 : (size_t{1} << precision) / 2;
    CoarseColors coarse{{}, full ? 5 : 6};
    coarse.colors = histogram.Coarse(coarse.shift);
    while (coarse.shift > kLeastCoarseShift && coarse.colors.size() <= threshold) {
        --coarse.shift;
        coarse.colors = histogram.Coarse(coarse.shift);
    }
    return coarse;
}

}  // namespace

bool QuantizeColors(ReducePalette& palette, const CountedColors& image, int32_t countSpec) {
    const PaletteSize size = SizeFor(countSpec);
    auto& entries = palette.entries;
    entries.clear();
    if (!CollectDistinctColors(image, size.limit, entries)) {
        entries.clear();
        ColorHistogram histogram(image);
        if (histogram.Table().empty()) {
            return false;
        }
        CoarseColors coarse = ChooseCoarse(histogram, size.precision);
        const ColorBoxes boxes = DivideIntoBoxes(coarse.colors, 256 >> coarse.shift);
        AddBoxMeans(image, histogram, coarse.colors, coarse.shift, boxes, entries);
        ThinPalette(entries, size.limit);
    }
    FinishPalette(palette);
    return true;
}

bool QuantizePalette(ReducePalette& palette, const KVBitmap* bitmap, int32_t countSpec) {
    if (bitmap == nullptr) {
        return false;
    }
    const auto pixels = bitmap->Words();
    if (pixels.empty() || pixels.size() > std::numeric_limits<uint32_t>::max()) {
        return false;
    }
    return QuantizeColors(palette, {pixels}, countSpec);
}

}  // namespace imgbasic
