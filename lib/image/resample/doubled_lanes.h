#pragma once

#include "lib/image/resample/resample_lanes.h"

// Interpolation of doubled columns, see bilinear_forms.h. Two neighbours share the pixel between
// their others, with the same weight:
//
//      pixels            p0     p1     p2
//      one column        far    near
//      the next                 near   far
//
// So every second column is one vector, the columns between are another, of whose products by
// weights half are the same; and only the colours differ from vector to vector, where all pixels
// are opaque.
namespace imgbasic {

template <typename Lanes>
struct DoubledRow : BilinearRow {
    using Doubles = typename Lanes::Doubles;
    using Share = typename WeightedSumLanes<Lanes>::Share;

    /// The shares of a source row's opaque pixels.
    struct Shares {
        Share ofFar;
        Share ofNear;

        explicit Shares(double rowWeight)
            : ofFar(OpaqueShare<Lanes>(Lanes::Set(kFarWeight * rowWeight))),
              ofNear(OpaqueShare<Lanes>(Lanes::Set(kNearWeight * rowWeight))) {}
    };

    /// What the columns of either kind have in common.
    struct Column {
        Doubles scale;
        Doubles alpha;

        /// The shares are those of a column's left and right pixels.
        Column(double rowCoverage, const Share& upperLeft, const Share& upperRight,
               const Share& lowerLeft, const Share& lowerRight) {
            const typename Lanes::Pixels pixels{};
            WeightedSumLanes<Lanes> sum;
            sum.AddShare(pixels, upperLeft);
            sum.AddShare(pixels, upperRight);
            sum.AddShare(pixels, lowerLeft);
            sum.AddShare(pixels, lowerRight);
            scale = sum.Scale();
            alpha = sum.Alpha(Lanes::Set(rowCoverage));
        }
    };

    Shares inUpper;
    Shares inLower;
    Column leftFar;
    Column rightFar;

    explicit DoubledRow(const BilinearRow& row)
        : BilinearRow(row),
          inUpper(row.upper.weight),
          inLower(row.lower.weight),
          leftFar(rowCoverage, inUpper.ofFar, inUpper.ofNear, inLower.ofFar, inLower.ofNear),
          rightFar(rowCoverage, inUpper.ofNear, inUpper.ofFar, inLower.ofNear, inLower.ofFar) {}
};

/// The sums of one colour channel in the columns whose left pixel, or whose right one, is far.
template <typename Lanes, int kChannel, bool kLeftFar>
static inline typename Lanes::Doubles ChannelSum(const DoubledRow<Lanes>& row,
                                                 const typename Lanes::Pixels* upper,
                                                 const typename Lanes::Pixels* lower) {
    const auto part = [](auto pixels, const auto& share) {
        return WeightedSumLanes<Lanes>::template Part<kChannel>(pixels, share);
    };
    const auto& [upperFar, upperNear] = row.inUpper;
    const auto& [lowerFar, lowerNear] = row.inLower;
    if constexpr (kLeftFar) {
        return part(upper[0], upperFar) + part(upper[1], upperNear) + part(lower[0], lowerFar) +
               part(lower[1], lowerNear);
    } else {
        return part(upper[0], upperNear) + part(upper[1], upperFar) + part(lower[0], lowerNear) +
               part(lower[1], lowerFar);
    }
}

template <typename Lanes, bool kLeftFar>
static inline typename Lanes::Pixels ColumnsOfKind(const DoubledRow<Lanes>& row,
                                                   const typename Lanes::Pixels* upper,
                                                   const typename Lanes::Pixels* lower) {
    const auto& [scale, alpha] = kLeftFar ? row.leftFar : row.rightFar;
    return Lanes::Pack(scale * ChannelSum<Lanes, 0, kLeftFar>(row, upper, lower),
                       scale * ChannelSum<Lanes, 1, kLeftFar>(row, upper, lower),
                       scale * ChannelSum<Lanes, 2, kLeftFar>(row, upper, lower), alpha);
}

/// Draws two vectors of columns from `i` on if their pixels are opaque, else returns false.
template <typename Lanes>
static inline bool DrawOpaqueDoubled(const DoubledRow<Lanes>& row, size_t i, bool streaming) {
    const RGBA16* const above = row.upper.pixels + row.left.index[i];
    const RGBA16* const below = row.lower.pixels + row.left.index[i];
    if (above->a != kFullScale) {
        return false;
    }
    const bool leftFarFirst = row.left.weight[i] == kFarWeight;
    // Where the right pixel of the first column is the far one, the second has the same two.
    const size_t last = leftFarFirst ? 2 : 1;
    const typename Lanes::Pixels upper[] = {Lanes::Load(above), Lanes::Load(above + 1),
                                            Lanes::Load(above + last)};
    const typename Lanes::Pixels lower[] = {Lanes::Load(below), Lanes::Load(below + 1),
                                            Lanes::Load(below + last)};
    if (!AreOpaque<Lanes>(upper[0], upper[1], upper[2], lower[0], lower[1], lower[2])) {
        return false;
    }
    const auto [low, high] =
        leftFarFirst ? Lanes::Interleave(ColumnsOfKind<Lanes, true>(row, upper, lower),
                                         ColumnsOfKind<Lanes, false>(row, upper + 1, lower + 1))
                     : Lanes::Interleave(ColumnsOfKind<Lanes, false>(row, upper, lower),
                                         ColumnsOfKind<Lanes, true>(row, upper, lower));
    const auto all = Lanes::Visible(upper[0]);
    Lanes::Store(row.dst + i, low, all, streaming);
    Lanes::Store(row.dst + i + Lanes::kCount, high, all, streaming);
    return true;
}

template <typename Lanes>
static void DoubledLanes(const DoubledRow<Lanes>& row, size_t i, bool streaming) {
    static_assert(2 * Lanes::kCount <= kDoubledColumns);
    if (row.doubled[i] == 0 || !DrawOpaqueDoubled(row, i, streaming)) {
        BilinearLanes<Lanes>(row, i, streaming);
        BilinearLanes<Lanes>(row, i + Lanes::kCount, streaming);
    }
}

/// Draws columns that are fewer than DoubledLanes draws, or none of them doubled.
template <typename Lanes, typename Row>
static void DrawBilinear(const Row& row, size_t begin, size_t end) {
    DrawColumns<Lanes::kCount, BilinearRow>(row, begin, end, BilinearLanes<Lanes>,
                                            BilinearRowScalar);
}

template <typename Lanes>
static inline void DrawDoubled(const BilinearRow& row, size_t begin, size_t end) {
    using Row = DoubledRow<Lanes>;
    DrawColumns<2 * Lanes::kCount>(Row(row), begin, end, DoubledLanes<Lanes>,
                                   DrawBilinear<Lanes, Row>);
}

}  // namespace imgbasic
