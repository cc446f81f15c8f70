#pragma once

#include <immintrin.h>

#include <cstdint>

#include "lib/image/color_word.h"
#include "lib/image/nearest_lookup.h"

// For files that are compiled for AVX2; everything here has internal linkage.
namespace imgbasic {

/// The channels of a pixel word as four 16-bit lanes.
static inline __m128i ChannelLanes(uint32_t word) {
    return _mm_cvtepu8_epi16(_mm_cvtsi32_si128(static_cast<int>(word)));
}

/// Squared distances of a block's colours from `query`, the masked channel lanes twice in either
/// half, as 16-bit lanes that saturate.
static inline __m128i BlockDistances(const CandidateBlock& block, __m256i query) {
    const auto* colors = reinterpret_cast<const __m128i*>(block.colors);
    const __m256i first = _mm256_sub_epi16(_mm256_cvtepu8_epi16(_mm_loadu_si128(colors)), query);
    const __m256i last = _mm256_sub_epi16(_mm256_cvtepu8_epi16(_mm_loadu_si128(colors + 1)), query);
    const __m256i sums =
        _mm256_hadd_epi32(_mm256_madd_epi16(first, first), _mm256_madd_epi16(last, last));
    const __m128i packed =
        _mm_packus_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
    return _mm_shuffle_epi32(packed, _MM_SHUFFLE(3, 1, 2, 0));
}

/// NearestLookup::Find for a colour whose masked channel lanes are at hand. Where two entries are
/// equally near, and for cells that are new, that decides.
static inline uint8_t FindNearestAvx2(NearestLookup& lookup, const NearestTables& tables,
                                      uint32_t color, __m128i lanes) {
    const uint32_t cell = tables.cells[CellOf<NearestTables::kBits>(color)];
    if (cell == NearestTables::kUnknown || cell == NearestTables::kSearchPalette) {
        return lookup.Find(color);
    }
    const __m256i query = _mm256_broadcastq_epi64(lanes);
    const CandidateBlock* block = tables.blocks + cell;
    uint32_t best = 0xFFFFFFFF;
    uint8_t index = 0;
    while (true) {
        const __m128i distances = BlockDistances(*block, query);
        const __m128i minimum = _mm_minpos_epu16(distances);
        const auto found = static_cast<uint32_t>(_mm_cvtsi128_si32(minimum));
        const uint32_t distance = found & 0xFFFF;
        const uint32_t place = found >> 16;
        const __m128i equal = _mm_cmpeq_epi16(distances, _mm_broadcastw_epi16(minimum));
        const uint32_t used = 0xFFFFU >> (16 - 2 * block->count);
        const bool tie =
            (static_cast<uint32_t>(_mm_movemask_epi8(equal)) & used) != 3U << 2 * place;
        if (tie || distance == best) {
            return lookup.Find(color);
        }
        if (distance < best) {
            best = distance;
            index = block->indices[place];
        }
        if (!block->more) {
            return index;
        }
        ++block;
    }
}

}  // namespace imgbasic
