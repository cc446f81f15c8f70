#pragma once

#include <immintrin.h>

#include <cstddef>

#include "lib/image/pixels/rgba16.h"

// For the files that are compiled for one instruction set; everything here has internal linkage.
namespace imgbasic {

/// Has the line of the caches fetched that begins about `x` pixels ahead; nothing for null.
static inline void FetchAhead(const RGBA16* ahead, size_t x) {
    _mm_prefetch(reinterpret_cast<const char*>(ahead) + x * sizeof(RGBA16), _MM_HINT_T0);
}

}  // namespace imgbasic
