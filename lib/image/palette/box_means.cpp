#include "lib/image/palette/box_means.h"

#include <algorithm>

namespace imgbasic {
namespace {

// From boxes to colours, with one pass over the image. Three grids of colour space meet here, each
// cell of one inside a cell of the next (a channel's bits, for a shift of 5):
//
//      colour               7 6 5 4 3 2 1 0       what a mean is taken of
//      histogram cell       7 6 5 4 3             ColorHistogram, 5 bits
//      second cut           7 6 5 4               shift - 1: where a box is cut in halves
//      coarse colour        7 6 5                 shift: what the boxes are made of
//
// A histogram cell thus lies in one half of one box as a whole. Its place in the histogram's table,
// which is not needed for counting any more, gets that half's number, and the pass over the image
// looks up for each colour to which sum it is added.
static_assert(ColorHistogram::kBits >= 8 - (kLeastCoarseShift - 1));
static_assert(1 << (8 - (kLeastCoarseShift - 1)) <= ColorBox::kMaxLevels);
static_assert(2 * kMaxBoxes <= UINT32_MAX, "numbers of halves in the histogram's table");

/// Pixels that will share a mean.
struct ColorSum {
    std::array<uint64_t, kColorChannels> total{};
    uint32_t count = 0;

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

/// Cuts the boxes by the median rule once more, with a quarter as the least part, and puts the
/// number of each cell's half, 2 * box or 2 * box + 1, into the histogram's table.
std::vector<Halves> CutInHalves(ColorHistogram& histogram, const std::vector<CoarseColor>& coarse,
                                int shift, size_t boxCount) {
    constexpr uint64_t kDivisor = 4;
    const auto boxOf = BoxTable(coarse);
    std::vector<ColorBox> fine(boxCount);
    for (const auto& [number, count] : histogram.Occupied()) {
        ColorBox& box = fine[boxOf[CoarseCell(number, shift)]];
        box.count += count;
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            box.Add(channel, ShiftedLevel(number, channel, shift - 1), count);
        }
    }
    std::vector<Halves> halves(boxCount);
    for (size_t box = 0; box < boxCount; ++box) {
        const auto cut = FindCut(fine[box], kDivisor);
        halves[box].cut = cut;
        halves[box].lower.count = cut ? cut->lower : fine[box].count;
        halves[box].upper.count = fine[box].count - halves[box].lower.count;
    }
    const auto table = histogram.Table();
    for (const auto& [number, count] : histogram.Occupied()) {
        const uint32_t box = boxOf[CoarseCell(number, shift)];
        const auto& cut = halves[box].cut;
        const bool upper = cut && ShiftedLevel(number, cut->channel, shift - 1) > cut->end;
        table[number] = 2 * box + (upper ? 1 : 0);
    }
    return halves;
}

/// Sums of 64 bits: 2^32 pixels of 255 at most.
void SumColors(const CountedColors& image, std::span<const uint32_t> halfOfCell,
               std::vector<Halves>& halves) {
    std::vector<std::array<uint64_t, kColorChannels>> totals(2 * halves.size());
    for (size_t i = 0; i < image.colors.size(); ++i) {
        const uint32_t color = VisibleColor(image.colors[i]);
        auto& total = totals[halfOfCell[CellOf<ColorHistogram::kBits>(color)]];
        for (size_t channel = 0; channel < kColorChannels; ++channel) {
            total[channel] += static_cast<uint64_t>(ChannelOf(color, channel)) * image.Count(i);
        }
    }
    for (size_t box = 0; box < halves.size(); ++box) {
        halves[box].lower.total = totals[2 * box];
        halves[box].upper.total = totals[2 * box + 1];
    }
}

}  // namespace

void AddBoxMeans(const CountedColors& image, ColorHistogram& histogram,
                 const std::vector<CoarseColor>& coarse, int shift, const ColorBoxes& boxes,
                 KVArray<KVColorPalette>& entries) {
    auto halves = CutInHalves(histogram, coarse, shift, boxes.boxes.size());
    SumColors(image, histogram.Table(), halves);
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
