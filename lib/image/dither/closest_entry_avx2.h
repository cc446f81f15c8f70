#pragma once

#include <immintrin.h>

#include <cstdint>

#include "lib/image/dither/closest_entry_lookup.h"
#include "lib/image/palette/color_word.h"
#include "lib/image/simd/fetch_ahead.h"

// For files that are compiled for AVX2; everything here has internal linkage.
//
// Ranks (see CandidateBlock) know squared distances only. Where two entries are at the least
// distance, ClosestEntryLookup::Find decides, and so it does for cells without a block of their
// own, whose block is one in which all ranks are alike. Two entries are at the least distance
// when the least rank is another's once the indices are complemented, which turns their order
// round.
namespace imgbasic {

static inline __m256i ComplementedIndices(__m256i ranks) {
    return _mm256_xor_si256(ranks, _mm256_set1_epi32((1 << CandidateBlock::kIndexBits) - 1));
}

/// The ranks of a block's entries for a colour, whose low bits fill every lane of `lowBits`.
static inline __m256i RanksOf(const CandidateBlock& block, __m256i lowBits) {
    const __m256i weights = _mm256_load_si256(reinterpret_cast<const __m256i*>(block.weights));
    const __m256i ranks = _mm256_load_si256(reinterpret_cast<const __m256i*>(block.ranks));
    const __m256i factor = _mm256_set1_epi16(-2 << CandidateBlock::kIndexBits);
    const __m256i pairs = _mm256_maddubs_epi16(lowBits, weights);
    return _mm256_add_epi32(_mm256_madd_epi16(pairs, factor), ranks);
}

/// What of a colour is above the least colour of its grid cell.
static inline __m256i LowBits(__m256i colors) {
    return _mm256_and_si256(colors, _mm256_set1_epi8(0xFF >> CandidateGrid::kBits));
}

/// TableCellOf of eight colours.
static inline __m256i CellsOf(__m256i colors) {
    static_assert(ClosestEntryTables::kBits == 5 && CandidateGrid::kBits == 3);
    const auto bits = [&](int shift, int mask) {
        return _mm256_and_si256(_mm256_srli_epi32(colors, shift), _mm256_set1_epi32(mask));
    };
    return _mm256_or_si256(_mm256_or_si256(bits(3, 0x1F), bits(6, 0x1F << 5)),
                           _mm256_or_si256(bits(9, 0x1F << 10), bits(14, 0x7 << 15)));
}

/// Lane i of the result is the least lane of rows[i]: each step pairs what is left of two rows.
///
///      rows 0, 1    0 1 0 1 | 0 1 0 1        of two rows alternating, half as many candidates
///      with 2, 3    0 1 2 3 | 0 1 2 3
///      with 4 - 7   0 1 2 3 | 4 5 6 7
static inline __m256i LeastOfEach(const __m256i (&rows)[8]) {
    const auto two = [&](int i) {
        return _mm256_min_epi32(_mm256_unpacklo_epi32(rows[i], rows[i + 1]),
                                _mm256_unpackhi_epi32(rows[i], rows[i + 1]));
    };
    const auto four = [&](int i) {
        const __m256i front = two(i);
        const __m256i back = two(i + 2);
        return _mm256_min_epi32(_mm256_unpacklo_epi64(front, back),
                                _mm256_unpackhi_epi64(front, back));
    };
    const __m256i front = four(0);
    const __m256i back = four(4);
    return _mm256_min_epi32(_mm256_permute2x128_si256(front, back, 0x20),
                            _mm256_permute2x128_si256(front, back, 0x31));
}

/// ClosestEntryLookup::Find for eight colours; the indices fill lanes of 32 bits.
static inline __m256i FindEightAvx2(ClosestEntryLookup& lookup, const ClosestEntryTables& tables,
                                    __m256i colors) {
    alignas(32) uint32_t cells[8];
    alignas(32) uint32_t lowBits[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(cells), CellsOf(colors));
    _mm256_store_si256(reinterpret_cast<__m256i*>(lowBits), LowBits(colors));
    __m256i ranks[8];
    for (int i = 0; i < 8; ++i) {
        ranks[i] = RanksOf(tables.blocks[tables.cells[cells[i]]],
                           _mm256_set1_epi32(static_cast<int>(lowBits[i])));
    }
    const __m256i least = LeastOfEach(ranks);
    for (__m256i& row : ranks) {
        row = ComplementedIndices(row);
    }
    const __m256i decided = _mm256_cmpeq_epi32(least, ComplementedIndices(LeastOfEach(ranks)));
    __m256i indices = _mm256_and_si256(least, _mm256_set1_epi32(0xFF));
    auto undecided =
        static_cast<uint32_t>(~_mm256_movemask_ps(_mm256_castsi256_ps(decided))) & 0xFF;
    if (undecided != 0) {
        alignas(32) uint32_t words[8];
        alignas(32) uint32_t found[8];
        _mm256_store_si256(reinterpret_cast<__m256i*>(words), colors);
        _mm256_store_si256(reinterpret_cast<__m256i*>(found), indices);
        for (; undecided != 0; undecided &= undecided - 1) {
            const int i = __builtin_ctz(undecided);
            found[i] = lookup.Find(words[i]);
        }
        indices = _mm256_load_si256(reinterpret_cast<const __m256i*>(found));
    }
    return indices;
}

/// Calls `eight(colors)` for every eight pixels of a row, which answers their indices, and
/// stores these. Copies of a pixel fill up the last eight.
template <typename Eight>
static inline void ForEachEight(const uint32_t* colors, uint8_t* indices, size_t width,
                                const RGBA16* ahead, Eight&& eight) {
    const auto store = [](uint8_t* to, __m256i lanes) {
        const __m256i words = _mm256_packus_epi32(lanes, lanes);
        const __m256i bytes = _mm256_packus_epi16(words, words);
        _mm_storel_epi64(
            reinterpret_cast<__m128i*>(to),
            _mm_unpacklo_epi32(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1)));
    };
    const auto load = [](const uint32_t* from) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    };
    size_t x = 0;
    for (; x + 8 <= width; x += 8) {
        FetchAhead(ahead, x);
        store(indices + x, eight(load(colors + x)));
    }
    if (x == width) {
        return;
    }
    uint32_t rest[8];
    uint8_t found[8];
    for (size_t i = 0; i < 8; ++i) {
        rest[i] = colors[x + (x + i < width ? i : 0)];
    }
    store(found, eight(load(rest)));
    for (size_t i = 0; x + i < width; ++i) {
        indices[x + i] = found[i];
    }
}

}  // namespace imgbasic
