#include "lib/image/dither/closest_entry_avx2.h"
#include "lib/image/dither/map_forms.h"

namespace imgbasic {
namespace {

// One pixel's colour depends on the entry found for the one in front of it, so that a picture is
// one chain of look-ups from its first pixel to its last, and the latency of a link is the least
// that a pixel takes. All that does not wait for the pixel in front is done beforehand, for kStep
// pixels at a time: their colours without its share, and with these for guesses the regions in
// which to look. The link that is left, in cycles:
//
//      share of the pixel in front: shift, subtract, shift     3
//      add, clamp to bytes, spread again, pairs to all lanes   4
//      multiply-add, two additions                             7
//      least of sixteen: of two vectors, of eight lanes        9
//      permute: the entry; its channels                        4
//
// Where a guess is wrong by more than its region leaves room for, and for ties, the colour itself
// is looked up.

constexpr size_t kStep = 8;

/// What is known of some pixels before their turn, in order of their columns.
struct Guesses {
    alignas(32) ColorError sums[kStep];  ///< colours with the shares of the row above
    uint16_t blocks[kStep];              ///< RegionLookup::kMostAsked and their numbers
};

__m256i LoadErrors(const ColorError* errors) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(errors));
}

/// Sixteenths, rounded down.
__m256i Share(__m256i errors, int weight) {
    const __m256i weights = _mm256_set1_epi16(static_cast<short>(weight));
    return _mm256_srai_epi16(_mm256_mullo_epi16(errors, weights), 4);
}

/// RegionLookup::CellOfGuess for four guesses.
__m128i CellsOfGuesses(__m128i guesses) {
    const auto bits = [&](int shift, int mask) {
        return _mm_and_si128(_mm_srli_epi32(guesses, shift), _mm_set1_epi32(mask));
    };
    return _mm_or_si128(_mm_or_si128(bits(4, 0xF), bits(8, 0xF0)),
                        _mm_or_si128(bits(12, 0xF00), bits(17, 0x7000)));
}

/// `left` and `right` are the weights of the errors on either side in the row above.
[[gnu::always_inline]] inline void MakeGuesses(RegionLookup& lookup, const uint32_t* colors,
                                               const ColorError* above, size_t count, int left,
                                               int right, Guesses& guesses) {
    alignas(16) uint32_t words[kStep];
    alignas(16) uint32_t cells[kStep];
    for (size_t i = 0; i < kStep; i += 4) {
        const __m128i rest = _mm_set1_epi32(static_cast<int>(count) - static_cast<int>(i));
        const __m128i four = _mm_maskload_epi32(reinterpret_cast<const int*>(colors + i),
                                                _mm_cmpgt_epi32(rest, _mm_setr_epi32(0, 1, 2, 3)));
        __m256i sums = _mm256_cvtepu8_epi16(four);
        sums = _mm256_add_epi16(sums, Share(LoadErrors(above + i - 1), left));
        sums = _mm256_add_epi16(sums, Share(LoadErrors(above + i), 5));
        sums = _mm256_add_epi16(sums, Share(LoadErrors(above + i + 1), right));
        const __m128i guessed =
            _mm_packus_epi16(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
        _mm256_store_si256(reinterpret_cast<__m256i*>(guesses.sums + i), sums);
        _mm_store_si128(reinterpret_cast<__m128i*>(words + i), guessed);
        _mm_store_si128(reinterpret_cast<__m128i*>(cells + i), CellsOfGuesses(guessed));
    }
    const uint16_t* numbers = lookup.Numbers();
    for (size_t i = 0; i < kStep; ++i) {
        const uint16_t number = numbers[cells[i]];
        guesses.blocks[i] = number;
        if (number < RegionLookup::kMostAsked) [[unlikely]] {
            guesses.blocks[i] = lookup.Ask(words[i]);
        }
    }
}

__m256i LeastOfAll(__m256i ranks) {
    __m256i least = _mm256_min_epi32(ranks, _mm256_permute2x128_si256(ranks, ranks, 1));
    least = _mm256_min_epi32(least, _mm256_shuffle_epi32(least, _MM_SHUFFLE(1, 0, 3, 2)));
    return _mm256_min_epi32(least, _mm256_shuffle_epi32(least, _MM_SHUFFLE(2, 3, 0, 1)));
}

/// ClosestEntryLookup::Find for the colour in the lowest 32 bits.
uint8_t FindOne(ClosestEntryLookup& lookup, const ClosestEntryTables& tables, __m128i color) {
    const auto word = static_cast<uint32_t>(_mm_cvtsi128_si32(color));
    const __m256i ranks = RanksOf(tables.blocks[tables.cells[TableCellOf(word)]],
                                  LowBits(_mm256_broadcastd_epi32(color)));
    const __m256i least = LeastOfAll(ranks);
    const __m256i other = ComplementedIndices(LeastOfAll(ComplementedIndices(ranks)));
    const __m256i different = _mm256_xor_si256(least, other);
    if (_mm256_testz_si256(different, different) == 0) {
        return lookup.Find(word);
    }
    return static_cast<uint8_t>(_mm_cvtsi128_si32(_mm256_castsi256_si128(least)));
}

/// The channels of a colour that fills every 32-bit lane, twice in each half.
__m256i ChannelLanes(__m256i colors) {
    return _mm256_unpacklo_epi8(colors, _mm256_setzero_si256());
}

__m256i BroadcastColor(uint32_t color) {
    return _mm256_set1_epi32(static_cast<int>(color));
}

__m128i BroadcastWord(uint32_t word) {
    return _mm_set1_epi32(static_cast<int>(word));
}

/// An entry: its colour in every 32-bit lane, and where it is in the block.
struct RegionEntry {
    __m256i colors;
    uint32_t place;
    bool single;  ///< false where it ties with another
};

/// `channels` as ChannelLanes has them. A call would pass the result through memory, on the chain.
[[gnu::always_inline]] inline RegionEntry FindInRegion(const RegionBlock& block, __m256i channels) {
    const auto load = [](const auto& array, int half) {
        return _mm256_load_si256(reinterpret_cast<const __m256i*>(&array[0]) + half);
    };
    const __m256i blueGreen = _mm256_shuffle_epi32(channels, 0b00000000);
    const __m256i redAlpha = _mm256_shuffle_epi32(channels, 0b01010101);
    const auto ranks = [&](int half) {
        const __m256i first = _mm256_madd_epi16(blueGreen, load(block.blueGreen, half));
        const __m256i second = _mm256_madd_epi16(redAlpha, load(block.redAlpha, half));
        return _mm256_add_epi32(_mm256_add_epi32(first, load(block.ranks, half)), second);
    };
    const __m256i front = ranks(0);
    const __m256i back = ranks(1);
    const __m256i least = LeastOfAll(_mm256_min_epi32(front, back));
    // For every lane the colour of its lesser entry is known before the least lane is. That lane is
    // in the low three bits of the place, which are all that the permutation looks at.
    const __m256i colors = _mm256_blendv_epi8(load(block.colors, 0), load(block.colors, 1),
                                              _mm256_cmpgt_epi32(front, back));
    // Two bits for each rank that is no greater than the least but for the place.
    const __m256i alike = _mm256_or_si256(least, _mm256_set1_epi32(RegionBlock::kSize - 1));
    const __m256i greater =
        _mm256_packs_epi32(_mm256_cmpgt_epi32(front, alike), _mm256_cmpgt_epi32(back, alike));
    const auto bits = ~static_cast<uint32_t>(_mm256_movemask_epi8(greater));
    const auto number = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm256_castsi256_si128(least)));
    return {_mm256_permutevar8x32_epi32(colors, least), number % uint32_t{RegionBlock::kSize},
            _mm_popcnt_u32(bits) == 2};
}

template <bool kAccumulate>
void MapRow(const DiffusionLookups& lookups, const uint32_t* colors, uint8_t* indices, size_t width,
            const RGBA16* ahead, ptrdiff_t step, ErrorRows errors) {
    const ClosestEntryTables& tables = lookups.closest.Tables();
    const bool forward = step > 0;
    Guesses guesses;
    __m256i share = _mm256_setzero_si256();
    for (size_t done = 0; done < width; done += kStep) {
        const size_t count = width - done < kStep ? width - done : kStep;
        const size_t begin = forward ? done : width - done - count;
        MakeGuesses(lookups.regions, colors + begin, errors.above + begin, count, forward ? 3 : 1,
                    forward ? 1 : 3, guesses);
        const RegionBlock* blocks = lookups.regions.Blocks();
        FetchAhead(ahead, done);
        for (size_t i = 0; i < count; ++i) {
            const size_t x = forward ? i : count - 1 - i;
            const __m256i sum = _mm256_broadcastq_epi64(
                _mm_loadl_epi64(reinterpret_cast<const __m128i*>(guesses.sums + x)));
            const __m256i wanted = _mm256_packus_epi16(_mm256_add_epi16(sum, share), sum);
            const __m256i channels = ChannelLanes(wanted);
            const __m256i from =
                kAccumulate ? channels : ChannelLanes(BroadcastColor(colors[begin + x]));
            const RegionBlock& block = blocks[guesses.blocks[x] - RegionLookup::kMostAsked];
            const __m128i outside = _mm_subs_epu8(
                _mm_sub_epi8(_mm256_castsi256_si128(wanted), BroadcastWord(block.least)),
                BroadcastWord(block.room));
            RegionEntry entry = FindInRegion(block, channels);
            uint8_t index = block.indices[entry.place];
            const bool inside = _mm_cvtsi128_si32(outside) == 0;
            if (!entry.single || !inside) [[unlikely]] {
                index = FindOne(lookups.closest, tables, _mm256_castsi256_si128(wanted));
                entry.colors = BroadcastColor(tables.colors[index]);
            }
            // (7 * (from - entry)) >> 4, with what waits for the entry kept short.
            const __m256i lanes = ChannelLanes(entry.colors);
            const __m256i seven = _mm256_mullo_epi16(from, _mm256_set1_epi16(7));
            share = _mm256_srai_epi16(
                _mm256_sub_epi16(_mm256_add_epi16(seven, lanes), _mm256_slli_epi16(lanes, 3)), 4);
            indices[begin + x] = index;
            _mm_storel_epi64(reinterpret_cast<__m128i*>(errors.current + begin + x),
                             _mm256_castsi256_si128(_mm256_sub_epi16(from, lanes)));
        }
    }
}

}  // namespace

void MapDiffusedRowAvx2(const DiffusionLookups& lookups, const uint32_t* colors, uint8_t* indices,
                        size_t width, const RGBA16* ahead, ptrdiff_t step, ErrorRows errors,
                        bool accumulate) {
    (accumulate ? MapRow<true> : MapRow<false>)(lookups, colors, indices, width, ahead, step,
                                                errors);
}

}  // namespace imgbasic
