#pragma once

#include "lib/image/resample/average_forms.h"
#include "lib/image/resample/stride.h"
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
    size_t entry = i;
    if constexpr (kStride == 0) {
        const int32_t* const indices = row.indices;
        const int32_t width = row.sourceWidth;
        for (; entry < end; entry += columns) {
            add(typename Lanes::Picker(indices + entry, width).Pick(source), entry);
        }
    } else {
        using Comb = typename Lanes::template Comb<kStride>;
        const RGBA16* pixels = source + row.indices[i];
        const Comb comb(pixels);
        add(comb.template Every<0>(), entry);
        add(comb.template Every<1>(), entry += columns);
        if constexpr (kStride == 3) {
            add(comb.template Every<2>(), entry += columns);
        }
        pixels += kStride;
        while ((entry += columns) < end) {
            add(Comb(pixels++).template Every<0>(), entry);
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
[[gnu::always_inline]] static inline bool SumOpaque(AverageSums<Lanes>& sums, const AverageRow& row,
                                                    size_t i) {
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
            sums.sum.Add(pixels, Lanes::Load(weights + entry) * weight);
        });
    }
}

/// Whether the pixels of a vector add nothing but zeros.
template <typename Lanes, int kStride>
static inline bool AreTransparent(const AverageRow& row, size_t i) {
    auto all = typename Lanes::Pixels{};
    const AverageTap* const end = row.rows + row.rowCount;
    for (const AverageTap* tap = row.rows; tap != end; ++tap) {
        if (tap->pixels != nullptr) {
            ForEachTap<Lanes, kStride>(row, tap->pixels, i, [&](auto pixels, size_t /*entry*/) {
                all = Lanes::Union(all, pixels);
            });
        }
    }
    return !Lanes::Any(Lanes::Visible(all));
}

template <typename Lanes, int kStride>
[[gnu::always_inline]] static inline void FetchRowsAhead(const AverageRow& row, size_t i) {
    if constexpr (kStride > 0) {
        for (size_t j = 0; j < row.rowCount; ++j) {
            if (row.rows[j].pixels != nullptr) {
                FetchPageAhead<kStride * Lanes::kCount>(row.rows[j].pixels, row.indices[i]);
            }
        }
    }
}

/// SumOpaque of rows of weight 1 and columns none of which has more taps than the stride of their
/// run: they have the same shares in all rows.
template <typename Lanes, int kStride>
[[gnu::always_inline]] static inline bool SumWhole(WeightedSumLanes<Lanes>& sum,
                                                   const AverageRow& row, size_t i) {
    using Share = typename WeightedSumLanes<Lanes>::Share;
    const double* const shares = row.opaqueShares + i;
    const Share first(Lanes::Load(shares));
    const Share second(Lanes::Load(shares + row.columns));
    const Share last(Lanes::Load(shares + (kStride - 1) * row.columns));
    auto missing = typename Lanes::Pixels{};
    const auto add = [&](auto pixels, const Share& share) {
        missing = Lanes::Union(missing, Lanes::NotOpaque(pixels));
        sum.AddShare(pixels, share);
    };
    const int32_t index = row.indices[i];
    const AverageTap* const end = row.rows + row.rowCount;
    for (const AverageTap* tap = row.rows; tap != end; ++tap) {
        const typename Lanes::template Comb<kStride> comb(tap->pixels + index);
        add(comb.template Every<0>(), first);
        add(comb.template Every<1>(), second);
        if constexpr (kStride == 3) {
            add(comb.template Every<2>(), last);
        }
    }
    return !Lanes::Any(Lanes::Visible(missing));
}

template <typename Lanes, int kStride>
[[gnu::always_inline]] static inline bool SumKnownOpaque(AverageSums<Lanes>& sums,
                                                         const AverageRow& row, size_t i) {
    if constexpr (kStride > 0) {
        if (row.isWhole && row.runs[i].taps == kStride) {
            return SumWhole<Lanes, kStride>(sums.sum, row, i);
        }
    }
    return SumOpaque<Lanes, kStride, false>(sums, row, i);
}

/// Draws columns of [begin, end) as long as the means of opaque pixels need no more than their
/// colours, the weights being those of an earlier row. Returns the first column that is not drawn.
/// Not inlined, so that the constants stay in registers.
template <typename Lanes, int kStride>
[[gnu::noinline]] static size_t DrawKnownOpaque(const AverageRow& row, size_t begin, size_t end,
                                                bool streaming) {
    size_t i = begin;
    for (; i < end && row.rows[0].pixels[row.indices[i]].a == kFullScale; i += Lanes::kCount) {
        FetchRowsAhead<Lanes, kStride>(row, i);
        const auto scale = Lanes::Load(row.opaqueScales + i);
        const auto known = Lanes::Greater(scale, Lanes::Set(0));
        AverageSums<Lanes> sums;
        if (!Lanes::All(known) || !SumKnownOpaque<Lanes, kStride>(sums, row, i)) {
            break;
        }
        const auto alpha = Lanes::Load(row.opaqueAlphas + i);
        Lanes::Store(row.dst + i, sums.sum.Mean(scale, alpha), known, streaming);
    }
    return i;
}

/// Draws a vector of which nothing is known from earlier rows.
template <typename Lanes, int kStride>
static inline void DrawAverage(const AverageRow& row, size_t i, uint16_t firstAlpha,
                               bool streaming) {
    if (firstAlpha == 0 && AreTransparent<Lanes, kStride>(row, i)) {
        return;
    }
    AverageSums<Lanes> sums;
    const bool isOpaque = firstAlpha == kFullScale && SumOpaque<Lanes, kStride, true>(sums, row, i);
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

/// Draws the columns [begin, end), whose runs have the same stride.
template <typename Lanes, int kStride>
static inline void DrawAverages(const AverageRow& row, size_t begin, size_t end, bool streaming) {
    const bool hasPixels = row.rowCount > 0 && row.taps > 0 && row.rows[0].pixels != nullptr;
    size_t i = begin;
    while (i < end) {
        // Most vectors are opaque, or transparent, as their first pixel is.
        const uint16_t firstAlpha = hasPixels ? row.rows[0].pixels[row.indices[i]].a : 1;
        const size_t known = firstAlpha == kFullScale && row.opaqueScales != nullptr
                                 ? DrawKnownOpaque<Lanes, kStride>(row, i, end, streaming)
                                 : i;
        if (known > i) {
            i = known;
        } else {
            FetchRowsAhead<Lanes, kStride>(row, i);
            DrawAverage<Lanes, kStride>(row, i, firstAlpha, streaming);
            i += Lanes::kCount;
        }
    }
}

template <typename Lanes>
static void AverageLanes(const AverageRow& row, size_t begin, size_t end, bool streaming) {
    ForEachStride<Lanes::kCount>(
        begin, end, [&](size_t i) { return row.runs[i].stride; },
        [&]<int kStride>(size_t first, size_t last) {
            DrawAverages<Lanes, kStride>(row, first, last, streaming);
        });
}

}  // namespace imgbasic
