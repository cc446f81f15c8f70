#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"

// For the files that are compiled for one instruction set; everything here has internal linkage.
// Always inlined: GCC takes a function that does nothing but fetch for one without effects and
// drops the calls.
namespace imgbasic {

/// The pixels in a page of memory, at whose end the processor stops fetching ahead by itself.
constexpr size_t kPagePixels = 4096 / sizeof(RGBA16);

/// Has the line of the caches fetched that begins about `x` pixels ahead; nothing for null.
[[gnu::always_inline]] static inline void FetchAhead(const RGBA16* ahead, size_t x) {
    _mm_prefetch(reinterpret_cast<const char*>(ahead) + x * sizeof(RGBA16), _MM_HINT_T0);
}

/// The same for the lines that hold `kPixels` pixels, a page behind the pixel `x` of a row.
template <size_t kPixels>
[[gnu::always_inline]] static inline void FetchPageAhead(const RGBA16* row, int32_t x) {
    for (size_t i = 0; i < kPixels; i += 64 / sizeof(RGBA16)) {
        FetchAhead(row, static_cast<size_t>(x) + kPagePixels + i);
    }
}

}  // namespace imgbasic
