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

/// `step` is the pixels that a kernel does at once. A run to be streamed begins where `dst` is
/// aligned to so many; a buffer that never is, its address being no multiple of a pixel's size, is
/// not streamed.
template <typename Pixel>
static inline VectorRun SplitRun(const Pixel* dst, size_t count, size_t step, Store store) {
    const size_t bytes = step * sizeof(Pixel);
    const size_t misaligned = reinterpret_cast<uintptr_t>(dst) % bytes;
    const bool streaming = store == Store::Streaming && misaligned % sizeof(Pixel) == 0;
    const size_t toAlignment =
        streaming && misaligned != 0 ? (bytes - misaligned) / sizeof(Pixel) : 0;
    const size_t begin = toAlignment < count ? toAlignment : count;
    return {begin, begin + (count - begin) / step * step, streaming};
}

/// Stores one vector of pixels; streamed stores need an aligned `dst`.
template <typename Pixel>
static inline void StoreVector(Pixel* dst, __m256i pixels, bool streaming) {
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

/// Calls `line(i, streaming)` for the first pixel of every 64 bytes of `dst`, a line of the caches,
/// in any order, and `scalar(begin, end)` for what is left of the `count` pixels at both ends.
///
/// What is streamed comes from memory as a rule, and one core waits for it less when it reads
/// several pages side by side: the processor fetches ahead within each of them, not beyond.
template <typename Pixel, typename Scalar, typename Line>
static inline void ForEachLine(const Pixel* dst, size_t count, Store store, Scalar scalar,
                               Line line) {
    constexpr size_t kLine = 64 / sizeof(Pixel);
    constexpr size_t kPage = 4096 / sizeof(Pixel);
    constexpr size_t kPages = 8;
    const VectorRun run = SplitRun(dst, count, kLine, store);
    scalar(size_t{0}, run.begin);
    size_t i = run.begin;
    if (run.streaming) {
        for (; run.end - i >= kPages * kPage; i += kPages * kPage) {
            for (size_t x = i; x < i + kPage; x += kLine) {
                for (size_t page = 0; page < kPages; ++page) {
                    line(x + page * kPage, true);
                }
            }
        }
    }
    for (; i < run.end; i += kLine) {
        line(i, run.streaming);
    }
    FinishStores(run.streaming);
    scalar(run.end, count);
}

}  // namespace imgbasic
