#pragma once

#include <array>

#include "plugin/imgbasic/chan_decomp.h"
#include "plugin/imgbasic/chan_merge.h"
#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {

template <typename... Process>
struct FilterList {};

/// The module's filters in the order of their numbers.
using Filters = FilterList<GrayScaleImageProcess, MonoImageProcess, NegaImageProcess,
                           ChannelDecomposeImageProcess, ChannelMergeImageProcess,
                           ReduceColorImageProcess, ScalingImageProcess>;

template <typename... Process>
constexpr std::array<FilterRow, sizeof...(Process)> RowsOf(FilterList<Process...> /*filters*/) {
    return {kRow<Process>...};
}

/// The rows of Filters. Hosts read them too, and need none of the filters' code for that.
inline constexpr auto kFilterRows = RowsOf(Filters{});

}  // namespace imgbasic
