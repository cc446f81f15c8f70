#pragma once

#include <immintrin.h>

#include <cstdint>

#include "lib/image/dither/closest_entry_lookup.h"
#include "lib/image/palette/color_word.h"

// For files that are compiled for AVX2; everything here has internal linkage.
namespace imgbasic {

/// An entry, its channels as the low four 16-bit lanes.
struct ClosestEntry {
    __m128i lanes;
    uint8_t index;
};

/// The channels of the pixel word in the low 32 bits as four 16-bit lanes.
static inline __m128i ChannelLanes(__m128i word) {
    return _mm_cvtepu8_epi16(word);
}

static inline __m128i ChannelLanes(uint32_t word) {
    return ChannelLanes(_mm_cvtsi32_si128(static_cast<int>(word)));
}

/// Squared distances of eight colours from `query`, the channel lanes over and over, as 16-bit
/// lanes that saturate. Only the lanes of `mask` count.
///
///      squares of colours 0 to 3     b+g r+a b+g r+a | b+g r+a b+g r+a     sums of two channels
///                                       0       1    |    2       3
///      hadd with those of 4 to 7      0   1   4   5  |  2   3   6   7      32-bit sums
///      packus                       0 1 4 5 2 3 6 7                        16 bits, saturated
///      shuffle, by pairs            0 1 2 3 4 5 6 7
///
/// The two halves of a 256-bit register do not mix on the way, hence the order that the shuffle
/// puts right.
static inline __m128i Distances(__m256i colors, __m256i query, __m256i mask) {
    const auto squares = [&](__m128i words) {
        const __m256i lanes = _mm256_sub_epi16(_mm256_cvtepu8_epi16(words), query);
        const __m256i counted = _mm256_and_si256(lanes, mask);
        return _mm256_madd_epi16(counted, counted);
    };
    const __m256i sums = _mm256_hadd_epi32(squares(_mm256_castsi256_si128(colors)),
                                           squares(_mm256_extracti128_si256(colors, 1)));
    const __m128i packed =
        _mm_packus_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
    return _mm_shuffle_epi32(packed, _MM_SHUFFLE(3, 1, 2, 0));
}

/// ClosestEntryLookup::Find for a colour whose channel lanes are at hand: eight entries a step, the
/// least distance and its place by one instruction (minpos). It knows distances only. Where that is
/// not enough, Find decides: for cells that are new or have no candidates, and where the least
/// distance is there twice, in one block or in two. Distances of 65535 and more, which saturate,
/// look equal and so end up there as well.
///
/// Spare entries of a block are copies of its first. They cannot be found, since minpos takes the
/// first of equals; `used` keeps them from looking like ties.
static inline ClosestEntry FindClosestAvx2(ClosestEntryLookup& lookup,
                                           const ClosestEntryTables& tables, uint32_t color,
                                           __m128i lanes, __m256i mask) {
    const auto decide = [&] {
        const uint8_t index = lookup.Find(color);
        return ClosestEntry{ChannelLanes(tables.colors[index]), index};
    };
    const uint32_t cell = tables.cells[CellOf<ClosestEntryTables::kBits>(color)];
    if (cell == ClosestEntryTables::kUnknown || cell == ClosestEntryTables::kSearchPalette) {
        return decide();
    }
    const __m256i query = _mm256_broadcastq_epi64(lanes);
    ClosestEntry closest{};
    uint32_t best = 0xFFFFFFFF;
    for (const CandidateBlock* block = tables.blocks + cell;; ++block) {
        const __m256i colors = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block->colors));
        const __m128i distances = Distances(colors, query, mask);
        const __m128i minimum = _mm_minpos_epu16(distances);
        const auto found = static_cast<uint32_t>(_mm_cvtsi128_si32(minimum));
        const uint32_t distance = found & 0xFFFF;
        const uint32_t place = found >> 16;
        const __m128i equal = _mm_cmpeq_epi16(distances, _mm_broadcastw_epi16(minimum));
        const uint32_t used = 0xFFFFU >> (16 - 2 * block->count);
        const bool tie =
            (static_cast<uint32_t>(_mm_movemask_epi8(equal)) & used) != 3U << 2 * place;
        if (tie || distance == best) {
            return decide();
        }
        if (distance < best) {
            best = distance;
            // The lanes are ready sooner from the block than by way of the index.
            const __m256i number = _mm256_castsi128_si256(_mm_srli_epi32(minimum, 16));
            closest.lanes =
                ChannelLanes(_mm256_castsi256_si128(_mm256_permutevar8x32_epi32(colors, number)));
            closest.index = block->indices[place];
        }
        if (!block->more) {
            return closest;
        }
    }
}

/// The mask for FindClosestAvx2.
static inline __m256i LaneMask(const ClosestEntryTables& tables) {
    const __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(tables.colorMask));
    return _mm256_broadcastq_epi64(_mm_cvtepi8_epi16(bytes));
}

}  // namespace imgbasic
