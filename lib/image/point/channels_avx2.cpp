#include <immintrin.h>

#include "lib/image/point/channels_forms.h"
#include "lib/image/simd/fetch_ahead.h"
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

    const auto isolate = [&](size_t i, bool streaming) {
        const __m256i kept = _mm256_and_si256(Load(src + i), lanes);
        StoreVector(dst + i, _mm256_or_si256(kept, others), streaming);
    };
    ForEachLine(
        dst, count, store,
        [&](size_t begin, size_t end) {
            IsolateChannelScalar(dst + begin, src + begin, end - begin, channel, store);
        },
        [&](size_t i, bool streaming) {
            isolate(i, streaming);
            isolate(i + kStep, streaming);
        });
}

// One pixel is one 64-bit lane, with the channel's value moved to its lowest 16 bits. Packing four
// vectors leaves eight pairs of neighbours, those of the lower and of the upper halves apart.
void TakeChannelAvx2(uint16_t* plane, const RGBA16* src, size_t count, Channel channel,
                     uint32_t percent, Store store) {
    const __m128i shift = ShiftOf(channel);
    const __m256i lowest = _mm256_set1_epi64x(0xFFFF);
    const __m256i percents = _mm256_set1_epi64x(percent);
    // n / 100 = (n * reciprocal >> 37) + (n < 0) for every int32_t n: the reciprocal exceeds
    // 2^37 / 100 by 0.28, too little to reach the next integer.
    const __m256i reciprocal = _mm256_set1_epi64x(0x51EB'851F);
    const auto take = [&](const RGBA16* pixels) {
        const __m256i value = _mm256_and_si256(_mm256_srl_epi64(Load(pixels), shift), lowest);
        if (percent == 100) {
            return value;
        }
        const __m256i product = _mm256_mul_epu32(value, percents);
        // Only the lowest 16 bits of the quotient are kept, so the shift need not copy the sign.
        const __m256i scaled = _mm256_srli_epi64(_mm256_mul_epi32(product, reciprocal), 37);
        const __m256i quotient = _mm256_add_epi32(scaled, _mm256_srli_epi32(product, 31));
        return _mm256_and_si256(quotient, lowest);
    };
    const __m256i inOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);

    const auto takeVector = [&](size_t i, bool streaming) {
        const RGBA16* const pixels = src + i;
        const __m256i first = _mm256_packus_epi32(take(pixels), take(pixels + kStep));
        const __m256i second =
            _mm256_packus_epi32(take(pixels + 2 * kStep), take(pixels + 3 * kStep));
        const __m256i packed = _mm256_packus_epi32(first, second);
        StoreVector(plane + i, _mm256_permutevar8x32_epi32(packed, inOrder), streaming);
    };
    ForEachLine(
        plane, count, store,
        [&](size_t begin, size_t end) {
            TakeChannelScalar(plane + begin, src + begin, end - begin, channel, percent, store);
        },
        [&](size_t i, bool streaming) {
            takeVector(i, streaming);
            takeVector(i + 4 * kStep, streaming);
        });
}

void JoinChannelsAvx2(RGBA16* dst, const ColorPlanes& colors, const RGBA16* alphas, size_t count,
                      Store store) {
    const auto lanes = [](const uint16_t* plane) {
        return _mm256_cvtepu16_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(plane)));
    };
    const __m256i alphaLanes = LanesOf(Channel::A);
    const auto scalar = [&](size_t begin, size_t end) {
        JoinChannelsScalar(dst + begin, {colors.r + begin, colors.g + begin, colors.b + begin},
                           alphas + begin, end - begin, store);
    };
    // Four buffers are read side by side as it is; three of them are small.
    const VectorRun run = SplitRun(dst, count, kStep, store);
    scalar(0, run.begin);
    for (size_t i = run.begin; i < run.end; i += kStep) {
        FetchAhead(alphas, i + kPagePixels);
        const __m256i green = _mm256_slli_epi64(lanes(colors.g + i), 16);
        const __m256i blue = _mm256_slli_epi64(lanes(colors.b + i), 32);
        const __m256i alpha = _mm256_and_si256(Load(alphas + i), alphaLanes);
        const __m256i redGreen = _mm256_or_si256(lanes(colors.r + i), green);
        StoreVector(dst + i, _mm256_or_si256(redGreen, _mm256_or_si256(blue, alpha)),
                    run.streaming);
    }
    FinishStores(run.streaming);
    scalar(run.end, count);
}

}  // namespace imgbasic
