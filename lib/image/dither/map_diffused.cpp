#include <algorithm>

#include "lib/image/dither/map_forms.h"

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

void MapDiffusedRowScalar(const DiffusionLookups& lookups, const uint32_t* colors, uint8_t* indices,
                          size_t width, const RGBA16* /*ahead*/, ptrdiff_t step, ErrorRows errors,
                          bool accumulate) {
    ClosestEntryLookup& lookup = lookups.closest;
    auto x = step > 0 ? ptrdiff_t{0} : static_cast<ptrdiff_t>(width) - 1;
    const uint32_t* entries = lookup.Tables().colors;
    const ColorError* above = errors.above;
    ColorError previous{};
    for (size_t i = 0; i < width; ++i, x += step) {
        const uint32_t color = colors[x];
        const uint32_t wanted = Gather(color, previous, above[x - step], above[x], above[x + step]);
        indices[x] = lookup.Find(wanted);
        previous = Difference(accumulate ? wanted : color, entries[indices[x]]);
        errors.current[x] = previous;
    }
}

}  // namespace imgbasic
