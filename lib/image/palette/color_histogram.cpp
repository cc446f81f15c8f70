#include "lib/image/palette/color_histogram.h"

#include <algorithm>

#include "lib/image/simd/simd.h"

namespace imgbasic {
namespace {

ColorHistogram::Part PartOf(uint32_t cell, uint64_t tally) {
    ColorHistogram::Part part{cell, static_cast<uint32_t>(tally >> kCountShift), {}};
    for (size_t channel = 0; channel < kColorChannels; ++channel) {
        part.rests[channel] =
            static_cast<uint32_t>(tally >> kTallyShift[channel] & ((1U << kTallyBits) - 1));
    }
    return part;
}

}  // namespace

void TallyScalar(const uint32_t* colors, size_t count, const RGBA16* /*ahead*/, uint32_t* cells,
                 uint64_t* tallies) {
    for (size_t i = 0; i < count; ++i) {
        cells[i] = CellOf<kTallyCellBits>(colors[i]);
        tallies[i] = kOnePixel;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            tallies[i] += uint64_t{colors[i] >> (8 * channel) & kRestMask} << kTallyShift[channel];
        }
    }
}

ColorHistogram::ColorHistogram() : tallies_(AllocateZeroed(kCellCount<kBits> * sizeof(uint64_t))) {
}

void ColorHistogram::Add(std::span<const uint32_t> colors, const RGBA16* ahead) {
    static constexpr KernelForms<TallyForm> kForms{TallyScalar, IMGBASIC_X86_FORM(TallyAvx2)};
    constexpr size_t kStep = 256;  // a few kilobytes for the arrays
    std::array<uint32_t, kStep> cells;
    std::array<uint64_t, kStep> additions;
    auto* tallies = reinterpret_cast<uint64_t*>(tallies_.get());
    for (size_t begin = 0; begin < colors.size(); begin += kStep) {
        const size_t count = std::min(colors.size() - begin, kStep);
        kForms.Active()(colors.data() + begin, count, ahead == nullptr ? nullptr : ahead + begin,
                        cells.data(), additions.data());
        for (size_t i = 0; i < count; ++i) {
            // One comparison finds both: below zero comes the greatest number.
            if (tallies[cells[i]] - 1 >= kFullTally - 1) {
                AddToFullOrNew(cells[i]);
            }
            tallies[cells[i]] += additions[i];
        }
    }
}

void ColorHistogram::AddToFullOrNew(uint32_t cell) {
    uint64_t& tally = reinterpret_cast<uint64_t*>(tallies_.get())[cell];
    if (tally == 0) {
        occupied_.push_back(cell);
    } else {
        parts_.push_back(PartOf(cell, tally));
    }
    tally = kSeen;
}

void ColorHistogram::Add(uint32_t color, uint32_t count) {
    constexpr uint32_t kMost = UINT32_MAX / kRestMask;
    while (count > 0) {
        const uint32_t some = std::min(count, kMost);
        Part& part = parts_.emplace_back(Part{CellOf<kBits>(color), some, {}});
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            part.rests[channel] = some * (color >> (8 * channel) & kRestMask);
        }
        count -= some;
    }
}

const std::vector<ColorHistogram::Part>& ColorHistogram::Finish() {
    parts_.reserve(parts_.size() + occupied_.size());
    for (const uint32_t cell : occupied_) {
        parts_.push_back(PartOf(cell, reinterpret_cast<const uint64_t*>(tallies_.get())[cell]));
    }
    occupied_.clear();
    return parts_;
}

std::vector<CoarseColor> CoarseColors(const std::vector<ColorHistogram::Part>& parts, int shift) {
    std::vector<uint32_t> counts(kCellCount<kCoarseBits>);
    for (const ColorHistogram::Part& part : parts) {
        counts[CoarseCell(part.cell, shift)] += part.count;
    }
    std::vector<CoarseColor> colors;
    for (uint32_t cell = 0; cell < counts.size(); ++cell) {
        if (counts[cell] != 0) {
            CoarseColor& color = colors.emplace_back();
            for (size_t channel = 0; channel < kColorChannels; ++channel) {
                color.level[channel] = static_cast<uint8_t>(CellLevel<kCoarseBits>(cell, channel));
            }
            color.count = counts[cell];
        }
    }
    return colors;
}

}  // namespace imgbasic
