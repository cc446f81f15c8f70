#include <immintrin.h>

#include "lib/image/point/channels_forms.h"
#include "lib/image/simd/vector_run.h"

namespace imgbasic {
namespace {

constexpr size_t kStep = sizeof(__m256i) / sizeof(RGBA16);

__m128i ShiftOf(Channel channel) {
    return _mm_cvtsi32_si128(16 * static_cast<int>(channel));
}

__m256i LanesOf(Channel channel) {
    return _mm256_sll_epi64(_mm256_set1_epi64x(0xFFFF), ShiftOf(channel));
}

__m256i Load(const RGBA16* pixels) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
}

}  // namespace

void IsolateChannelAvx2(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                        Store store) {
    const __m256i lanes = LanesOf(channel);
    const __m256i opaqueBlack = _mm256_set1_epi64x(static_cast<long long>(0xFF00'0000'0000'0000));
    const __m256i others = _mm256_andnot_si256(lanes, opaqueBlack);

    const VectorRun run = SplitRun(dst, count, kStep, store);
    IsolateChannelScalar(dst, src, run.begin, channel, store);
    for (size_t i = run.begin; i < run.end; i += kStep) {
        const __m256i kept = _mm256_and_si256(Load(src + i), lanes);
        StoreVector(dst + i, _mm256_or_si256(kept, others), run.streaming);
    }
    FinishStores(run.streaming);
    IsolateChannelScalar(dst + run.end, src + run.end, count - run.end, channel, store);
}

// One pixel is one 64-bit lane, with the channel's value moved to its lowest 16 bits.
void ReplaceChannelAvx2(RGBA16* dst, const RGBA16* src, size_t count, Channel channel,
                        uint32_t percent) {
    const __m128i shift = ShiftOf(channel);
    const __m256i lanes = LanesOf(channel);
    const __m256i lowest = _mm256_set1_epi64x(0xFFFF);
    const __m256i percents = _mm256_set1_epi64x(percent);
    // n / 100 = (n * reciprocal >> 37) + (n < 0) for every int32_t n: the reciprocal exceeds
    // 2^37 / 100 by 0.28, too little to reach the next integer.
    const __m256i reciprocal = _mm256_set1_epi64x(0x51EB'851F);

    const VectorRun run = SplitRun(dst, count, kStep, Store::Cached);
    for (size_t i = run.begin; i < run.end; i += kStep) {
        const __m256i value = _mm256_and_si256(_mm256_srl_epi64(Load(src + i), shift), lowest);
        const __m256i product = _mm256_mul_epu32(value, percents);
        // Only the lowest 16 bits of the quotient are kept, so the shift need not copy the sign.
        const __m256i scaled = _mm256_srli_epi64(_mm256_mul_epi32(product, reciprocal), 37);
        const __m256i quotient = _mm256_add_epi32(scaled, _mm256_srli_epi32(product, 31));
        const __m256i replaced = _mm256_and_si256(_mm256_sll_epi64(quotient, shift), lanes);
        StoreVector(dst + i, _mm256_or_si256(_mm256_andnot_si256(lanes, Load(dst + i)), replaced),
                    false);
    }
    ReplaceChannelScalar(dst + run.end, src + run.end, count - run.end, channel, percent);
}

}  // namespace imgbasic
