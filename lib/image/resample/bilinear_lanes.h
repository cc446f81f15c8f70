#pragma once

#include "lib/image/resample/bilinear_forms.h"
#include "lib/image/resample/stride.h"
#include "lib/image/resample/weighted_sum_lanes.h"
#include "lib/image/simd/fetch_ahead.h"

// The bilinear interpolation of several pixels at once, see resample_lanes.h.
namespace imgbasic {

/// The weight inside the clip rectangle.
template <typename Lanes>
static inline typename Lanes::Doubles InsideLanes(const BilinearRow& row, size_t i) {
    const auto left = Lanes::Load(row.left.inside + i);
    const auto right = Lanes::Load(row.right.inside + i);
    const auto upper = Lanes::Set(row.upper.inside);
    const auto lower = Lanes::Set(row.lower.inside);
    return left * upper + right * upper + left * lower + right * lower;
}

/// The pixels around the centres of one vector of destination pixels.
template <typename Lanes>
struct Corners {
    typename Lanes::Pixels upperLeft;
    typename Lanes::Pixels upperRight;
    typename Lanes::Pixels lowerLeft;
    typename Lanes::Pixels lowerRight;
};

/// kStride is that of the columns from `i` on.
template <typename Lanes, int kStride>
static inline Corners<Lanes> LoadCorners(const BilinearRow& row, size_t i) {
    if constexpr (kStride == 0) {
        const typename Lanes::Picker left(row.left.index + i, row.sourceWidth);
        const typename Lanes::Picker right(row.right.index + i, row.sourceWidth);
        return {left.Pick(row.upper.pixels), right.Pick(row.upper.pixels),
                left.Pick(row.lower.pixels), right.Pick(row.lower.pixels)};
    } else {
        using Comb = typename Lanes::template Comb<kStride>;
        const Comb upper(row.upper.pixels + row.left.index[i]);
        const Comb lower(row.lower.pixels + row.left.index[i]);
        return {upper.template Every<0>(), upper.template Every<1>(), lower.template Every<0>(),
                lower.template Every<1>()};
    }
}

/// The shares that four opaque pixels have in a sum.
template <typename Lanes>
struct CornerShares {
    using Share = typename WeightedSumLanes<Lanes>::Share;

    Share upperLeft;
    Share upperRight;
    Share lowerLeft;
    Share lowerRight;

    WeightedSumLanes<Lanes> Sum(const Corners<Lanes>& pixels) const {
        WeightedSumLanes<Lanes> sum;
        sum.AddShare(pixels.upperLeft, upperLeft);
        sum.AddShare(pixels.upperRight, upperRight);
        sum.AddShare(pixels.lowerLeft, lowerLeft);
        sum.AddShare(pixels.lowerRight, lowerRight);
        return sum;
    }

    /// The sum of black pixels.
    WeightedSumLanes<Lanes> Weights() const {
        const typename Lanes::Pixels black{};
        return Sum({black, black, black, black});
    }
};

/// What the weights alone decide of the means of four opaque pixels.
template <typename Lanes>
struct OpaqueMean {
    CornerShares<Lanes> shares;
    WeightedSumLanes<Lanes> weights;
    typename Lanes::Doubles scale = Lanes::Set(0);
};

/// The OpaqueMean of one vector after the other.
template <typename Lanes>
class OpaqueMeanOfColumns {
  public:
    OpaqueMeanOfColumns() : left_(Lanes::Set(-1)), right_(left_) {}  // no weights

    /// That of the columns from `i` on. Where they have a stride, their weights are mostly those of
    /// the columns before.
    template <int kStride>
    const OpaqueMean<Lanes>& From(const BilinearRow& row, size_t i) {
        const auto left = Lanes::Load(row.left.weight + i);
        const auto right = Lanes::Load(row.right.weight + i);
        if (kStride == 0 ||
            !Lanes::All(Lanes::Both(Lanes::Equal(left_, left), Lanes::Equal(right_, right)))) {
            using Share = typename CornerShares<Lanes>::Share;
            const auto upper = Lanes::Set(row.upper.weight);
            const auto lower = Lanes::Set(row.lower.weight);
            mean_.shares = {
                Share(OpaqueShare<Lanes>(left * upper)), Share(OpaqueShare<Lanes>(right * upper)),
                Share(OpaqueShare<Lanes>(left * lower)), Share(OpaqueShare<Lanes>(right * lower))};
            mean_.weights = mean_.shares.Weights();
            mean_.scale = mean_.weights.Scale();
            left_ = left;
            right_ = right;
        }
        return mean_;
    }

  private:
    typename Lanes::Doubles left_;
    typename Lanes::Doubles right_;
    OpaqueMean<Lanes> mean_;
};

/// Stores the mean colours of the sum, whose alphas are those of `weights`, at the given scale.
/// kStride is that of the columns.
template <typename Lanes, int kStride>
static inline void StoreMean(const BilinearRow& row, size_t i, const WeightedSumLanes<Lanes>& sum,
                             const WeightedSumLanes<Lanes>& weights, typename Lanes::Doubles scale,
                             bool streaming) {
    auto drawn = weights.IsVisible();
    auto alpha = weights.Alpha(Lanes::Load(row.coverage + i) * Lanes::Set(row.rowCoverage));
    if (row.needsInside && (kStride == 0 || !row.isPlain)) {
        const auto inside = InsideLanes<Lanes>(row, i);
        const auto full = Lanes::Set(kFullInside);
        const auto little = Lanes::Greater(full, inside);
        drawn = Lanes::Both(drawn, Lanes::Greater(inside, Lanes::Set(0)));
        if (row.fade && Lanes::Any(little)) {
            alpha = Lanes::Select(little, alpha * inside / full, alpha);
        }
    }
    Lanes::Store(row.dst + i, sum.Mean(scale, alpha), drawn, streaming);
}

template <typename Lanes, int kStride>
static inline void DrawInterpolated(const BilinearRow& row, size_t i,
                                    OpaqueMeanOfColumns<Lanes>& means, bool streaming) {
    FetchPageAhead<kHalved * Lanes::kCount>(row.upper.pixels, row.left.index[i]);
    FetchPageAhead<kHalved * Lanes::kCount>(row.lower.pixels, row.left.index[i]);
    const Corners<Lanes> pixels = LoadCorners<Lanes, kStride>(row, i);
    const auto& [upperLeft, upperRight, lowerLeft, lowerRight] = pixels;
    if (AreOpaque<Lanes>(upperLeft, upperRight, lowerLeft, lowerRight)) {
        const OpaqueMean<Lanes>& mean = means.template From<kStride>(row, i);
        StoreMean<Lanes, kStride>(row, i, mean.shares.Sum(pixels), mean.weights, mean.scale,
                                  streaming);
        return;
    }
    const auto all =
        Lanes::Union(Lanes::Union(upperLeft, upperRight), Lanes::Union(lowerLeft, lowerRight));
    if (!Lanes::Any(Lanes::Visible(all))) {
        return;
    }
    const auto left = Lanes::Load(row.left.weight + i);
    const auto right = Lanes::Load(row.right.weight + i);
    const auto upper = Lanes::Set(row.upper.weight);
    const auto lower = Lanes::Set(row.lower.weight);
    WeightedSumLanes<Lanes> sum;
    sum.Add(upperLeft, left * upper);
    sum.Add(upperRight, right * upper);
    sum.Add(lowerLeft, left * lower);
    sum.Add(lowerRight, right * lower);
    StoreMean<Lanes, kStride>(row, i, sum, sum, sum.Scale(), streaming);
}

template <typename Lanes, int kStride>
static inline void DrawInterpolations(const BilinearRow& row, size_t begin, size_t end,
                                      bool streaming) {
    OpaqueMeanOfColumns<Lanes> means;
    for (size_t i = begin; i < end; i += Lanes::kCount) {
        DrawInterpolated<Lanes, kStride>(row, i, means, streaming);
    }
}

template <typename Lanes>
static void BilinearLanes(const BilinearRow& row, size_t begin, size_t end, bool streaming) {
    ForEachStride<Lanes::kCount>(
        begin, end, [&](size_t i) { return row.strides[i]; },
        [&]<int kStride>(size_t first, size_t last) {
            DrawInterpolations<Lanes, kStride>(row, first, last, streaming);
        });
}

}  // namespace imgbasic
