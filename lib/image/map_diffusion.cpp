#include <algorithm>
#include <array>
#include <new>
#include <vector>

#include "lib/image/map_kinds.h"

namespace imgbasic {
namespace {

/// What is left over of a pixel's channels, -255 to 255 each.
using Error = std::array<int16_t, kColorChannels>;

/// The source colour with its share of the errors around it.
uint32_t Gather(uint32_t color, const Error& previous, const Error& behind, const Error& above,
                const Error& ahead) {
    uint32_t word = 0;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        const int value = ChannelOf(color, channel) + ((7 * previous[channel]) >> 4) +
                          ((3 * behind[channel]) >> 4) + ((5 * above[channel]) >> 4) +
                          (ahead[channel] >> 4);
        word |= static_cast<uint32_t>(std::clamp(value, 0, 255)) << (8 * channel);
    }
    return word;
}

Error Difference(uint32_t color, uint32_t entry) {
    Error error;
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        error[channel] =
            static_cast<int16_t>(ChannelOf(color, channel) - ChannelOf(entry, channel));
    }
    return error;
}

}  // namespace

bool MapDiffused(NearestLookup& lookup, const KVBitmap& source, KVBitmap& indexed,
                 bool accumulate) {
    // Two rows that change places, each with a zero on either side.
    const size_t width = static_cast<size_t>(source.Width());
    const ZeroedBlock block = AllocateZeroed(2 * (width + 2) * sizeof(Error));
    if (block == nullptr) {
        return false;
    }
    auto* above = reinterpret_cast<Error*>(block.get()) + 1;
    auto* current = above + width + 2;
    const uint32_t* pixels = source.Words().data();
    for (int32_t y = 0; y < source.Height(); ++y, pixels += width) {
        const auto row = indexed.IndexRow(y);
        const ptrdiff_t step = y % 2 == 0 ? 1 : -1;
        auto x = step > 0 ? ptrdiff_t{0} : static_cast<ptrdiff_t>(width) - 1;
        Error previous{};
        for (size_t i = 0; i < width; ++i, x += step) {
            const uint32_t color = VisibleColor(pixels[x]);
            const uint32_t wanted =
                Gather(color, previous, above[x - step], above[x], above[x + step]);
            const uint8_t index = lookup.Find(wanted);
            row[static_cast<size_t>(x)] = index;
            previous = Difference(accumulate ? wanted : color, lookup.ColorAt(index));
            current[x] = previous;
        }
        std::swap(above, current);
    }
    return true;
}

}  // namespace imgbasic
