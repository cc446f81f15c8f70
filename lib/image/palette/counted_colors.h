#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace imgbasic {

/// What a palette is chosen for, in the order of the image: its pixels, or in their place
/// colours that stand for several pixels each.
struct CountedColors {
    std::span<const uint32_t> colors;  ///< pixel words
    const uint32_t* counts = nullptr;  ///< pixels of each colour; null: one each

    uint32_t Count(size_t i) const { return counts == nullptr ? 1 : counts[i]; }
};

}  // namespace imgbasic
