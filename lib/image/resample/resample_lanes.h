#pragma once

#include "lib/image/resample/average_lanes.h"
#include "lib/image/resample/bilinear_lanes.h"
#include "lib/image/resample/nearest_forms.h"
#include "lib/image/simd/fetch_ahead.h"
#include "lib/image/simd/vector_run.h"

// The resampling kernels over several pixels at once, for each set of lanes the same. Operations
// and their order are the scalar forms': each lane computes one destination pixel, step by step,
// bit for bit, as if it were alone. What differs is that lanes share their branches. A step that a
// lane would leave out is one that adds zeros, or its result is not stored; and since such a lane
// computes all the same, it gets numbers that no step raises an exception for.
namespace imgbasic {

template <typename Lanes>
static void NearestLanes(const NearestRow& row, size_t begin, size_t end, bool streaming) {
    for (size_t i = begin; i < end; i += Lanes::kCount) {
        FetchPageAhead<kHalved * Lanes::kCount>(row.source, row.index[i]);
        const auto pixels = Lanes::PickOnce(row.source, row.index + i, row.sourceWidth);
        Lanes::Store(row.dst + i, pixels, Lanes::Visible(pixels), streaming);
    }
}

/// Draws the columns [begin, end) with `lanes(row, begin, end, streaming)`, which draws whole
/// vectors of kStep columns. The vectors at the ends overlap their neighbours: drawing a column
/// twice changes nothing. Only rows shorter than a vector are left to the scalar form.
///
///      columns     begin |..............................| end
///      in the run            |-------|-------|-------|          aligned when it is streamed
///      at the ends       |-------|               |-------|      stored through the caches
template <size_t kStep, typename Row>
static inline void DrawColumns(const Row& row, size_t begin, size_t end,
                               void (*lanes)(const Row&, size_t, size_t, bool),
                               void (&scalar)(const Row&, size_t, size_t)) {
    if (end - begin < kStep) {
        scalar(row, begin, end);
        return;
    }
    const VectorRun run = SplitRun(row.dst + begin, end - begin, kStep, row.store);
    if (run.begin > 0) {
        lanes(row, begin, begin + kStep, false);
    }
    lanes(row, begin + run.begin, begin + run.end, run.streaming);
    FinishStores(run.streaming);
    if (begin + run.end < end) {
        lanes(row, end - kStep, end, false);
    }
}

}  // namespace imgbasic
