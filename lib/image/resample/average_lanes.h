#pragma once

#include "lib/image/resample/average_forms.h"
#include "lib/image/resample/weighted_sum_lanes.h"
#include "lib/image/simd/fetch_ahead.h"

// The average over several pixels at once, see resample_lanes.h.
namespace imgbasic {

/// The sums of one vector of destination pixels.
template <typename Lanes>
struct AverageSums {
    WeightedSumLanes<Lanes> sum;
    typename Lanes::Doubles area = Lanes::Set(0);
};

/// Calls `add(pixels, entry)` for the taps that the columns from `i` on have in one source row.
/// kStride is that of their run.
template <typename Lanes, int kStride>
static inline void ForEachTap(const AverageRow& row, const RGBA16* source, size_t i, auto&& add) {
    const size_t columns = row.columns;
    const size_t end = static_cast<size_t>(row.runs[i].taps) * columns;
    if constexpr (kStride == 0) {
        const int32_t* const indices = row.indices;
        const int32_t width = row.sourceWidth;
        for (size_t entry = i; entry < end; entry += columns) {
            add(typename Lanes::Picker(indices + entry, width).Pick(source), entry);
        }
    } else {
        const RGBA16* pixels = source + row.indices[i];
        for (size_t entry = i; entry < end; entry += columns) {
            add(Lanes::template LoadEvery<kStride>(pixels), entry);
            ++pixels;
        }
    }
}

/// Adds the area under the columns from `i` on in a source row of the given weight.
template <typename Lanes>
static inline void AddArea(typename Lanes::Doubles& area, const AverageRow& row, double weight,
                           size_t i) {
    const double* const weights = row.areaWeights;
    const size_t columns = row.columns;
    const size_t end = static_cast<size_t>(row.runs[i].taps) * columns;
    for (size_t entry = i; entry < end; entry += columns) {
        area += Lanes::Load(weights + entry) * Lanes::Set(weight);
    }
}

/// Adds up as if all pixels were opaque; false when they are not. kWithArea: also the area.
template <typename Lanes, int kStride, bool kWithArea>
static inline bool SumOpaque(AverageSums<Lanes>& sums, const AverageRow& row, size_t i) {
    auto missing = typename Lanes::Pixels{};
    const AverageTap* const end = row.rows + row.rowCount;
    for (const AverageTap* tap = row.rows; tap != end; ++tap) {
        if constexpr (kWithArea) {
            AddArea<Lanes>(sums.area, row, tap->weight, i);
        }
        if (tap->pixels == nullptr) {
            continue;
        }
        const auto add = [&](auto pixels, auto share) {
            missing = Lanes::Union(missing, Lanes::NotOpaque(pixels));
            sums.sum.AddShare(pixels, typename WeightedSumLanes<Lanes>::Share(share));
        };
        if (tap->weight == 1) {
            const double* const shares = row.opaqueShares;
            ForEachTap<Lanes, kStride>(row, tap->pixels, i, [&](auto pixels, size_t entry) {
                add(pixels, Lanes::Load(shares + entry));
            });
        } else {
            const double* const weights = row.pixelWeights;
            const auto weight = Lanes::Set(tap->weight);
            ForEachTap<Lanes, kStride>(row, tap->pixels, i, [&](auto pixels, size_t entry) {
                add(pixels, OpaqueShare<Lanes>(Lanes::Load(weights + entry) * weight));
            });
        }
    }
    return !Lanes::Any(Lanes::Visible(missing));
}

/// Adds up pixels of any alpha, and the area.
template <typename Lanes, int kStride>
static inline void SumTranslucent(AverageSums<Lanes>& sums, const AverageRow& row, size_t i) {
    const AverageTap* const end = row.rows + row.rowCount;
    for (const AverageTap* tap = row.rows; tap != end; ++tap) {
        AddArea<Lanes>(sums.area, row, tap->weight, i);
        if (tap->pixels == nullptr) {
            continue;
        }
        const double* const weights = row.pixelWeights;
        const auto weight = Lanes::Set(tap->weight);
        ForEachTap<Lanes, kStride>(row, tap->pixels, i, [&](auto pixels, size_t entry) {
            // Transparent pixels would add zeros.
            if (Lanes::Any(Lanes::Visible(pixels))) {
                sums.sum.Add(pixels, Lanes::Load(weights + entry) * weight);
            }
        });
    }
}

/// Draws what the mean of opaque pixels needs no more than their colours for, as the weights are
/// those of an earlier row; false when the pixels or the row are otherwise.
template <typename Lanes, int kStride>
static inline bool DrawKnownOpaque(const AverageRow& row, size_t i, bool streaming) {
    if (row.opaqueScales == nullptr) {
        return false;
    }
    const auto scale = Lanes::Load(row.opaqueScales + i);
    const auto known = Lanes::Greater(scale, Lanes::Set(0));
    AverageSums<Lanes> sums;
    if (!Lanes::All(known) || !SumOpaque<Lanes, kStride, false>(sums, row, i)) {
        return false;
    }
    const auto alpha = Lanes::Load(row.opaqueAlphas + i);
    Lanes::Store(row.dst + i, sums.sum.Mean(scale, alpha), known, streaming);
    return true;
}

template <typename Lanes, int kStride>
static inline void DrawAverage(const AverageRow& row, size_t i, bool streaming) {
    if constexpr (kStride > 0) {
        for (size_t j = 0; j < row.rowCount; ++j) {
            if (row.rows[j].pixels != nullptr) {
                FetchPageAhead<kStride * Lanes::kCount>(row.rows[j].pixels, row.indices[i]);
            }
        }
    }
    // Most vectors are opaque or not from their first pixel on; for others the sum begins anew.
    const bool isPromising = row.rowCount > 0 && row.runs[i].taps > 0 &&
                             row.rows[0].pixels != nullptr &&
                             row.rows[0].pixels[row.indices[i]].a == kFullScale;
    if (isPromising && DrawKnownOpaque<Lanes, kStride>(row, i, streaming)) {
        return;
    }
    AverageSums<Lanes> sums;
    const bool isOpaque = isPromising && SumOpaque<Lanes, kStride, true>(sums, row, i);
    if (!isOpaque) {
        sums = {};
        SumTranslucent<Lanes, kStride>(sums, row, i);
    }
    const auto& [sum, area] = sums;
    const auto hasArea = Lanes::Greater(area, Lanes::Set(kSmallestArea));
    const auto drawn = Lanes::Both(sum.IsVisible(), hasArea);
    if (!Lanes::Any(drawn)) {
        return;
    }
    const auto covered = Lanes::Load(row.coverage + i) * Lanes::Set(row.rowCoverage);
    const auto alpha = sum.Alpha(covered) / DivisorIn<Lanes>(hasArea, area);
    const auto scale = sum.Scale();
    Lanes::Store(row.dst + i, sum.Mean(scale, alpha), drawn, streaming);
    if (isOpaque && row.opaqueScales != nullptr && Lanes::All(drawn)) {
        Lanes::Store(row.opaqueScales + i, scale);
        Lanes::Store(row.opaqueAlphas + i, alpha);
    }
}

template <typename Lanes>
static void AverageLanes(const AverageRow& row, size_t i, bool streaming) {
    switch (row.runs[i].stride) {
        case 2:
            return DrawAverage<Lanes, 2>(row, i, streaming);
        case 3:
            return DrawAverage<Lanes, 3>(row, i, streaming);
        default:
            return DrawAverage<Lanes, 0>(row, i, streaming);
    }
}

}  // namespace imgbasic
