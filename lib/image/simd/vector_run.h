#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/pixels/store.h"

// For the files that are compiled for one instruction set. Everything here has internal linkage:
// a shared inline function could be linked into the baseline code from any of those files.
namespace imgbasic {

/// How a run of pixels divides for a vector kernel: the scalar form does [0, begin) and
/// [end, count), whole vectors do [begin, end).
struct VectorRun {
    size_t begin;
    size_t end;
    bool streaming;  ///< store the vectors with StoreVector's streaming form
};

/// `step` is the pixels in a vector. A run to be streamed begins where `dst` is aligned to a
/// vector; a buffer that never is, its address being no multiple of a pixel's size, is not
/// streamed.
static inline VectorRun SplitRun(const RGBA16* dst, size_t count, size_t step, Store store) {
    const size_t bytes = step * sizeof(RGBA16);
    const size_t misaligned = reinterpret_cast<uintptr_t>(dst) % bytes;
    const bool streaming = store == Store::Streaming && misaligned % sizeof(RGBA16) == 0;
    const size_t toAlignment =
        streaming && misaligned != 0 ? (bytes - misaligned) / sizeof(RGBA16) : 0;
    const size_t begin = toAlignment < count ? toAlignment : count;
    return {begin, begin + (count - begin) / step * step, streaming};
}

/// Stores one vector of pixels; streamed stores need an aligned `dst`.
static inline void StoreVector(RGBA16* dst, __m256i pixels, bool streaming) {
    auto* address = reinterpret_cast<__m256i*>(dst);
    if (streaming) {
        _mm256_stream_si256(address, pixels);
    } else {
        _mm256_storeu_si256(address, pixels);
    }
}

/// Streamed stores are ordered with nothing; ends a run so that they are before all that follows.
static inline void FinishStores(bool streaming) {
    if (streaming) {
        _mm_sfence();
    }
}

}  // namespace imgbasic
