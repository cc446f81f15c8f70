#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace imgbasic {

/// The columns whose stride is looked for: as many as any vector has.
constexpr size_t kStrideColumns = 8;

/// The stride of halving, the most frequent reduction. So far ahead is fetched where none is known.
constexpr size_t kHalved = 2;

/// How far apart the source columns `indices` of the kStrideColumns from `i` on lie where that is 2
/// or 3 throughout and as many times their number from the first on are in the row, with `further`
/// more; else 0.
static inline int32_t FindStride(const std::vector<int32_t>& indices, size_t i, int32_t further,
                                 int32_t sourceWidth) {
    if (i + kStrideColumns > indices.size()) {
        return 0;
    }
    const int32_t* const index = &indices[i];
    const int32_t stride = index[1] - index[0];
    if (stride < 2 || stride > 3 ||
        sourceWidth - index[0] < stride * static_cast<int32_t>(kStrideColumns) + further) {
        return 0;
    }
    for (size_t n = 2; n < kStrideColumns; ++n) {
        if (index[n] - index[n - 1] != stride) {
            return 0;
        }
    }
    return stride;
}

/// Divides the columns [begin, end), of which a vector has kStep, where `strideAt(i)` changes from
/// vector to vector, and calls `draw.template operator()<stride>(begin, end)` for each part.
template <size_t kStep>
static inline void ForEachStride(size_t begin, size_t end, auto strideAt, auto draw) {
    while (begin < end) {
        const int32_t stride = strideAt(begin);
        size_t next = begin + kStep;
        while (next < end && strideAt(next) == stride) {
            next += kStep;
        }
        switch (stride) {
            case 2:
                draw.template operator()<2>(begin, next);
                break;
            case 3:
                draw.template operator()<3>(begin, next);
                break;
            default:
                draw.template operator()<0>(begin, next);
        }
        begin = next;
    }
}

}  // namespace imgbasic
