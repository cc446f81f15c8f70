#include <algorithm>
#include <utility>

#include "lib/image/dither/dither_kinds.h"
#include "lib/image/dither/map_forms.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

/// The source colour with its share of the errors around it.
uint32_t Gather(uint32_t color, const ColorError& previous, const ColorError& behind,
                const ColorError& above, const ColorError& ahead) {
    uint32_t word = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int value = ChannelOf(color, channel) + ((7 * previous.channels[channel]) >> 4) +
                          ((3 * behind.channels[channel]) >> 4) +
                          ((5 * above.channels[channel]) >> 4) + (ahead.channels[channel] >> 4);
        word |= static_cast<uint32_t>(std::clamp(value, 0, 255)) << (8 * channel);
    }
    return word;
}

ColorError Difference(uint32_t color, uint32_t entry) {
    ColorError error;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        error.channels[channel] =
            static_cast<int16_t>(ChannelOf(color, channel) - ChannelOf(entry, channel));
    }
    return error;
}

}  // namespace

void MapDiffusedRowScalar(ClosestEntryLookup& lookup, const uint32_t* pixels, uint8_t* indices,
                          size_t width, ptrdiff_t step, ErrorRows errors, bool accumulate) {
    auto x = step > 0 ? ptrdiff_t{0} : static_cast<ptrdiff_t>(width) - 1;
    const uint32_t* entries = lookup.Tables().colors;
    const ColorError* above = errors.above;
    ColorError previous{};
    for (size_t i = 0; i < width; ++i, x += step) {
        const uint32_t color = VisibleColor(pixels[x]);
        const uint32_t wanted = Gather(color, previous, above[x - step], above[x], above[x + step]);
        indices[x] = lookup.Find(wanted);
        previous = Difference(accumulate ? wanted : color, entries[indices[x]]);
        errors.current[x] = previous;
    }
}

bool MapDiffused(ClosestEntryLookup& lookup, const KVBitmap& source, KVBitmap& indexed,
                 bool accumulate) {
    static constexpr KernelForms<MapDiffusedForm> kForms{MapDiffusedRowScalar,
                                                         IMGBASIC_X86_FORM(MapDiffusedRowAvx2)};
    // Two rows that change places, each with a zero on either side.
    const size_t width = static_cast<size_t>(source.Width());
    const ZeroedBlock block = AllocateZeroed(2 * (width + 2) * sizeof(ColorError));
    if (block == nullptr) {
        return false;
    }
    auto* above = reinterpret_cast<ColorError*>(block.get()) + 1;
    auto* current = above + width + 2;
    const uint32_t* pixels = source.Words().data();
    for (int32_t y = 0; y < source.Height(); ++y) {
        kForms.Active()(lookup, pixels, indexed.IndexRow(y).data(), width, y % 2 == 0 ? 1 : -1,
                        {above, current}, accumulate);
        std::swap(above, current);
        pixels += width;
    }
    return true;
}

}  // namespace imgbasic
