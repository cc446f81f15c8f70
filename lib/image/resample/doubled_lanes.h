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

        Column(const WeightedSumLanes<Lanes>& weights, double rowCoverage)
            : scale(weights.Scale()), alpha(weights.Alpha(Lanes::Set(rowCoverage))) {}
    };

    Shares inUpper;
    Shares inLower;
    Column leftFar;
    Column rightFar;

    explicit DoubledRow(const BilinearRow& row)
        : BilinearRow(row),
          inUpper(row.upper.weight),
          inLower(row.lower.weight),
          leftFar(SharesOf<true>().Weights(), rowCoverage),
          rightFar(SharesOf<false>().Weights(), rowCoverage) {}

    /// The shares in columns whose left pixel, or whose right one, is far.
    template <bool kLeftFar>
    CornerShares<Lanes> SharesOf() const {
        if constexpr (kLeftFar) {
            return {inUpper.ofFar, inUpper.ofNear, inLower.ofFar, inLower.ofNear};
        } else {
            return {inUpper.ofNear, inUpper.ofFar, inLower.ofNear, inLower.ofFar};
        }
    }

    template <bool kLeftFar>
    typename Lanes::Pixels Draw(const Corners<Lanes>& pixels) const {
        const auto& [scale, alpha] = kLeftFar ? leftFar : rightFar;
        return SharesOf<kLeftFar>().Sum(pixels).Mean(scale, alpha);
    }
};

/// Draws two vectors of columns from `i` on if their pixels are opaque, else returns false.
template <typename Lanes>
[[gnu::always_inline]] static inline bool DrawOpaqueDoubled(const DoubledRow<Lanes>& row, size_t i,
                                                            bool streaming) {
    const RGBA16* const above = row.upper.pixels + row.left.index[i];
    const RGBA16* const below = row.lower.pixels + row.left.index[i];
    const bool leftFarFirst = row.left.weight[i] == kFarWeight;
    // Where the right pixel of the first column is the far one, the second has the same two.
    const size_t last = leftFarFirst ? 2 : 1;
    const Corners<Lanes> first{Lanes::Load(above), Lanes::Load(above + 1), Lanes::Load(below),
                               Lanes::Load(below + 1)};
    const Corners<Lanes> next{first.upperRight, Lanes::Load(above + last), first.lowerRight,
                              Lanes::Load(below + last)};
    if (!AreOpaque<Lanes>(first.upperLeft, first.upperRight, next.upperRight, first.lowerLeft,
                          first.lowerRight, next.lowerRight)) {
        return false;
    }
    const auto [low, high] =
        leftFarFirst
            ? Lanes::Interleave(row.template Draw<true>(first), row.template Draw<false>(next))
            : Lanes::Interleave(row.template Draw<false>(first), row.template Draw<true>(first));
    const auto all = Lanes::Visible(first.upperLeft);
    Lanes::Store(row.dst + i, low, all, streaming);
    Lanes::Store(row.dst + i + Lanes::kCount, high, all, streaming);
    return true;
}

/// Most vectors are opaque or not from their first pixel on.
template <typename Lanes>
static inline bool MayBeDoubled(const DoubledRow<Lanes>& row, size_t i) {
    return row.doubled[i] != 0 && row.upper.pixels[row.left.index[i]].a == kFullScale;
}

template <typename Lanes>
static void DoubledLanes(const DoubledRow<Lanes>& row, size_t begin, size_t end, bool streaming) {
    constexpr size_t kStep = 2 * Lanes::kCount;
    static_assert(kStep <= kDoubledColumns);
    size_t i = begin;
    while (i < end) {
        size_t next = i + kStep;
        if (!MayBeDoubled(row, i) || !DrawOpaqueDoubled(row, i, streaming)) {
            while (next < end && !MayBeDoubled(row, next)) {
                next += kStep;
            }
            BilinearLanes<Lanes>(row, i, next, streaming);
        }
        i = next;
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
