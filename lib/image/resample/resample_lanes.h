#pragma once

#include "lib/image/resample/average_lanes.h"
#include "lib/image/resample/bilinear_forms.h"
#include "lib/image/resample/nearest_forms.h"
#include "lib/image/simd/fetch_ahead.h"
#include "lib/image/simd/vector_run.h"

// The resampling kernels over several pixels at once, for each set of lanes the same. Operations
// and their order are the scalar forms': each lane computes one destination pixel, step by step,
// bit for bit, as if it were alone. What differs is that lanes share their branches. A step that a
// lane would leave out is one that adds zeros, or its result is not stored; and since such a lane
// computes all the same, it gets numbers that no step raises an exception for.
namespace imgbasic {

/// The source pixels a column that are fetched ahead: those of halving, the most frequent
/// reduction.
constexpr size_t kHalved = 2;

template <typename Lanes>
static void NearestLanes(const NearestRow& row, size_t i, bool streaming) {
    FetchPageAhead<kHalved * Lanes::kCount>(row.source, row.index[i]);
    const auto pixels = Lanes::PickOnce(row.source, row.index + i, row.sourceWidth);
    Lanes::Store(row.dst + i, pixels, Lanes::Visible(pixels), streaming);
}

/// The weight inside the clip rectangle.
template <typename Lanes>
static inline typename Lanes::Doubles InsideLanes(const BilinearRow& row, size_t i) {
    const auto left = Lanes::Load(row.left.inside + i);
    const auto right = Lanes::Load(row.right.inside + i);
    const auto upper = Lanes::Set(row.upper.inside);
    const auto lower = Lanes::Set(row.lower.inside);
    return left * upper + right * upper + left * lower + right * lower;
}

template <typename Lanes>
static void BilinearLanes(const BilinearRow& row, size_t i, bool streaming) {
    FetchPageAhead<kHalved * Lanes::kCount>(row.upper.pixels, row.left.index[i]);
    FetchPageAhead<kHalved * Lanes::kCount>(row.lower.pixels, row.left.index[i]);
    const typename Lanes::Picker leftPicker(row.left.index + i, row.sourceWidth);
    const typename Lanes::Picker rightPicker(row.right.index + i, row.sourceWidth);
    const auto upperLeft = leftPicker.Pick(row.upper.pixels);
    const auto upperRight = rightPicker.Pick(row.upper.pixels);
    const auto lowerLeft = leftPicker.Pick(row.lower.pixels);
    const auto lowerRight = rightPicker.Pick(row.lower.pixels);
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
    if (AreOpaque<Lanes>(upperLeft, upperRight, lowerLeft, lowerRight)) {
        sum.AddOpaque(upperLeft, left * upper);
        sum.AddOpaque(upperRight, right * upper);
        sum.AddOpaque(lowerLeft, left * lower);
        sum.AddOpaque(lowerRight, right * lower);
    } else {
        sum.Add(upperLeft, left * upper);
        sum.Add(upperRight, right * upper);
        sum.Add(lowerLeft, left * lower);
        sum.Add(lowerRight, right * lower);
    }
    auto drawn = sum.IsVisible();
    auto alpha = sum.Alpha(Lanes::Load(row.coverage + i) * Lanes::Set(row.rowCoverage));
    if (row.needsInside) {
        const auto inside = InsideLanes<Lanes>(row, i);
        const auto full = Lanes::Set(kFullInside);
        const auto little = Lanes::Greater(full, inside);
        drawn = Lanes::Both(drawn, Lanes::Greater(inside, Lanes::Set(0)));
        if (row.fade && Lanes::Any(little)) {
            alpha = Lanes::Select(little, alpha * inside / full, alpha);
        }
    }
    Lanes::Store(row.dst + i, sum.Mean(sum.Scale(), alpha), drawn, streaming);
}

/// Draws the columns [begin, end) with `lanes(row, i, streaming)`, which draws kStep columns from
/// `i` on. The vectors at the ends overlap their neighbours: drawing a column twice changes
/// nothing. Only rows shorter than a vector are left to the scalar form.
///
///      columns     begin |..............................| end
///      in the run            |-------|-------|-------|          aligned when it is streamed
///      at the ends       |-------|               |-------|      stored through the caches
template <size_t kStep, typename Row>
static inline void DrawColumns(const Row& row, size_t begin, size_t end,
                               void (*lanes)(const Row&, size_t, bool),
                               void (&scalar)(const Row&, size_t, size_t)) {
    if (end - begin < kStep) {
        scalar(row, begin, end);
        return;
    }
    const VectorRun run = SplitRun(row.dst + begin, end - begin, kStep, row.store);
    if (run.begin > 0) {
        lanes(row, begin, false);
    }
    for (size_t i = begin + run.begin; i < begin + run.end; i += kStep) {
        lanes(row, i, run.streaming);
    }
    FinishStores(run.streaming);
    if (begin + run.end < end) {
        lanes(row, end - kStep, false);
    }
}

}  // namespace imgbasic
