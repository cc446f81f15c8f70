#include "lib/image/palette/box_means.h"

#include <algorithm>

namespace imgbasic {
namespace {

// From boxes to colours. Three grids of colour space meet here, each cell of one inside a cell of
// the next (a channel's bits, for a shift of 5):
//
//      colour               7 6 5 4 3 2 1 0       what a mean is taken of
//      histogram cell       7 6 5 4 3             ColorHistogram, 5 bits
//      second cut           7 6 5 4               shift - 1: where a box is cut in halves
//      coarse colour        7 6 5                 shift: what the boxes are made of
//
// A histogram cell thus lies in one half of one box as a whole, and the sums of the cells add up to
// those of the halves.
static_assert(ColorHistogram::kBits >= 8 - (kLeastCoarseShift - 1));
static_assert(1 << (8 - (kLeastCoarseShift - 1)) <= ColorBox::kMaxLevels);

/// Pixels that will share a mean. Sums of 64 bits: 2^32 pixels of 255 at most.
struct ColorSum {
    std::array<uint64_t, kColorChannels> total{};
    uint32_t count = 0;

    void Add(const ColorHistogram::Part& part) {
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            total[channel] += part.Total(channel);
        }
        count += part.count;
    }

    friend ColorSum operator+(const ColorSum& a, const ColorSum& b) {
        ColorSum sum{.count = a.count + b.count};
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            sum.total[channel] = a.total[channel] + b.total[channel];
        }
        return sum;
    }

    /// Rounded to nearest, halves up. No channel's mean exceeds 255, so none reaches into the next.
    KVColorPalette Mean() const {
        uint64_t word = 0;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            word |= (total[channel] + count / 2) / count << (8 * channel);
        }
        return {static_cast<uint32_t>(word), count};
    }
};

/// A box cut once more, at levels half as coarse. Without a cut everything is in the lower half.
struct Halves {
    std::optional<BoxCut> cut;
    ColorSum lower;
    ColorSum upper;
};

/// The box of each occupied coarse colour.
std::vector<uint8_t> BoxTable(const std::vector<CoarseColor>& coarse) {
    std::vector<uint8_t> table(kCellCount<kCoarseBits>);
    for (const CoarseColor& color : coarse) {
        uint32_t cell = 0;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            cell |= uint32_t{color.level[channel]} << (kCoarseBits * channel);
        }
        table[cell] = color.box;
    }
    return table;
}

/// Cuts the boxes by the median rule once more, with a quarter as the least part.
std::vector<Halves> CutInHalves(const std::vector<ColorHistogram::Part>& parts,
                                const std::vector<CoarseColor>& coarse, int shift,
                                size_t boxCount) {
    constexpr uint64_t kDivisor = 4;
    const auto boxOf = BoxTable(coarse);
    std::vector<ColorBox> fine(boxCount);
    for (const ColorHistogram::Part& part : parts) {
        ColorBox& box = fine[boxOf[CoarseCell(part.cell, shift)]];
        box.count += part.count;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            box.Add(channel, ShiftedLevel(part.cell, channel, shift - 1), part.count);
        }
    }
    std::vector<Halves> halves(boxCount);
    for (size_t box = 0; box < boxCount; ++box) {
        halves[box].cut = FindCut(fine[box], kDivisor);
    }
    for (const ColorHistogram::Part& part : parts) {
        Halves& half = halves[boxOf[CoarseCell(part.cell, shift)]];
        const auto& cut = half.cut;
        const bool upper = cut && ShiftedLevel(part.cell, cut->channel, shift - 1) > cut->end;
        (upper ? half.upper : half.lower).Add(part);
    }
    return halves;
}

}  // namespace

void AddBoxMeans(const std::vector<ColorHistogram::Part>& parts,
                 const std::vector<CoarseColor>& coarse, int shift, const ColorBoxes& boxes,
                 KVArray<KVColorPalette>& entries) {
    const auto halves = CutInHalves(parts, coarse, shift, boxes.boxes.size());
    // All means differ. Any two boxes, and the halves of a box, lie on two sides of some cut, and a
    // mean has no channel beyond the least and the greatest value that went into it.
    size_t spare = kMaxBoxes - halves.size();
    for (const size_t number : boxes.order) {
        const Halves& half = halves[number];
        if (spare > 0 && half.cut) {
            entries.push_back(half.lower.Mean());
            entries.push_back(half.upper.Mean());
            --spare;
        } else {
            entries.push_back((half.lower + half.upper).Mean());
        }
    }
}

}  // namespace imgbasic
