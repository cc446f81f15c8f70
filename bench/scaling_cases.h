#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "bench/benchmark_pixels.h"
#include "bench/test_pictures.h"

namespace imgbasic {

/// One enlargement or reduction of a picture, for our kernels and for the peers'. The larger of
/// the two sizes is the one that the name tells.
struct ScalingCase {
    std::string name;  ///< percentage, picture, size
    BenchSize from;
    BenchSize to;
    bool opaque;

    std::vector<RGBA16> Picture() const { return opaque ? OpaquePhoto(from) : SoftEdged(from); }

    /// Of the larger image: what a memory copy beside it copies.
    size_t LargerBytes() const { return std::max(from.Pixels(), to.Pixels()) * sizeof(RGBA16); }
};

inline std::vector<ScalingCase> ScalingCases() {
    std::vector<ScalingCase> cases;
    for (const auto& [size, sizeName] :
         {std::pair{k2Megapixels, "2MP"}, std::pair{k16Megapixels, "16MP"}}) {
        const BenchSize half{size.width / 2, size.height / 2};
        const BenchSize third{size.width / 3, size.height / 3};
        for (const bool opaque : {true, false}) {
            const std::string suffix = std::string(opaque ? "/opaque/" : "/soft_edged/") + sizeName;
            cases.push_back({"50%" + suffix, size, half, opaque});
            cases.push_back({"33.3%" + suffix, size, third, opaque});
            cases.push_back({"200%" + suffix, half, size, opaque});
        }
    }
    return cases;
}

}  // namespace imgbasic
