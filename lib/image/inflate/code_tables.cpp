#include "lib/image/inflate/code_tables.h"

#include <algorithm>
#include <array>
#include <bit>

namespace imgbasic {
namespace {

constexpr size_t kMatchLengthSymbols = 29;
constexpr size_t kUsedDistanceSymbols = 30;

// What a symbol's entries have in common; the code's length is added when a table is built.
constexpr uint32_t SymbolEntry(size_t value, unsigned extraBits) {
    return static_cast<uint32_t>(value << 16) | extraBits;
}

constexpr std::array<uint32_t, kCodeLengthSymbols> CodeLengthSymbols() {
    std::array<uint32_t, kCodeLengthSymbols> entries{};
    for (size_t symbol = 0; symbol < entries.size(); ++symbol) {
        entries[symbol] = SymbolEntry(symbol, 0);
    }
    return entries;
}

// The bases of lengths and distances follow from the extra bits: every symbol begins where the
// one before ends. A symbol of n extra bits stands for 2^n values; after a first run without any,
// four length symbols (two distance symbols) have the same number, then one bit more:
//
//      symbol   257 ... 264  265 266 267 268  269 270 271 272  ...  281 282 283 284   285
//      bits      0       0    1   1   1   1    2   2   2   2         5   5   5   5     0
//      base      3      10   11  13  15  17   19  23  27  31       131 163 195 227   258
//
// 285 is the exception: the longest match has a symbol of its own, although 284 reaches it too.
constexpr unsigned MatchLengthExtraBits(unsigned i) {
    return i < 8 ? 0 : (i - 4) / 4;
}
constexpr unsigned DistanceExtraBits(unsigned symbol) {
    return symbol < 4 ? 0 : (symbol - 2) / 2;
}
static_assert(MatchLengthExtraBits(kMatchLengthSymbols - 2) == kMaxLengthExtraBits);
static_assert(DistanceExtraBits(kUsedDistanceSymbols - 1) == kMaxDistanceExtraBits);

constexpr std::array<uint32_t, kLiteralSymbols> LiteralSymbols() {
    std::array<uint32_t, kLiteralSymbols> entries{};
    for (size_t byte = 0; byte < 256; ++byte) {
        entries[byte] = kEntryLiteral | SymbolEntry(byte, 0);
    }
    entries[kEndOfBlockSymbol] = kEntryExceptional | kEntryEndOfBlock;
    uint32_t base = 3;
    for (unsigned i = 0; i < kMatchLengthSymbols - 1; ++i) {
        entries[257 + i] = SymbolEntry(base, MatchLengthExtraBits(i));
        base += 1U << MatchLengthExtraBits(i);
    }
    entries[285] = SymbolEntry(258, 0);
    entries[286] = kEntryExceptional | SymbolEntry(286, 0);
    entries[287] = kEntryExceptional | SymbolEntry(287, 0);
    return entries;
}

constexpr std::array<uint32_t, kDistanceSymbols> DistanceSymbols() {
    std::array<uint32_t, kDistanceSymbols> entries{};
    uint32_t base = 1;
    for (unsigned symbol = 0; symbol < kUsedDistanceSymbols; ++symbol) {
        entries[symbol] = SymbolEntry(base, DistanceExtraBits(symbol));
        base += 1U << DistanceExtraBits(symbol);
    }
    entries[30] = kEntryExceptional | SymbolEntry(30, 0);
    entries[31] = kEntryExceptional | SymbolEntry(31, 0);
    return entries;
}

constexpr auto kCodeLengthEntries = CodeLengthSymbols();
constexpr auto kLiteralEntries = LiteralSymbols();
constexpr auto kDistanceEntries = DistanceSymbols();
// The runs of bases end where the format says: at 258 and at 32 KiB.
static_assert(EntryValue(kLiteralEntries[284]) + (1U << kMaxLengthExtraBits) - 1 == 258);
static_assert(EntryValue(kDistanceEntries[29]) + (1U << kMaxDistanceExtraBits) - 1 == 32768);

constexpr uint32_t WithCodeBits(uint32_t symbolEntry, unsigned codeBits) {
    return symbolEntry + (codeBits << 8) + codeBits;
}

// Canonical codes of one length are consecutive numbers, but a code's first bit is its highest,
// and the stream delivers that first, as its lowest. Codes are therefore kept reversed, and
// counting up carries from the top down:
//
//      code      0110  ->  0111  ->  1000          (as written down)
//      reversed  0110  ->  1110  ->  0001          (as indexed)
//
// The highest zero becomes a one, all ones above it become zeros. A code one bit longer than its
// predecessor has a 0 at its end, the new top of the reversed number, which is there already. From
// the last code, all ones, it is 0.
constexpr uint32_t NextReversedCode(uint32_t code, unsigned bits) {
    const uint32_t zeros = code ^ ((1U << bits) - 1);
    if (zeros == 0) {
        return 0;
    }
    const uint32_t bit = std::bit_floor(zeros);
    return (code & (bit - 1)) | bit;
}
static_assert(NextReversedCode(0b0110, 4) == 0b1110 && NextReversedCode(0b1110, 4) == 0b0001);

struct CodeShape {
    std::array<unsigned, kMaxCodeBits + 1> count{};  // symbols by code length
    std::array<uint16_t, kLiteralSymbols> sorted;    // symbols in use, shortest code first
    unsigned longest = 0;
    bool isComplete = false;
    bool isOverSubscribed = false;

    // Sorts by counting. Lengths are a code exactly when their shares of all 2^15 bit patterns of
    // the greatest length, 2^(15 - n) for a code of n bits, add up to no more than all of them
    // (Kraft's inequality); when they add up to all, every pattern means something.
    constexpr explicit CodeShape(std::span<const uint8_t> lengths) {
        for (const uint8_t length : lengths) {
            ++count[length];
        }
        count[0] = 0;
        std::array<unsigned, kMaxCodeBits + 2> place{};
        uint32_t taken = 0;
        for (unsigned bits = 1; bits <= kMaxCodeBits; ++bits) {
            place[bits + 1] = place[bits] + count[bits];
            taken += count[bits] << (kMaxCodeBits - bits);
            longest = count[bits] != 0 ? bits : longest;
        }
        isComplete = taken == 1U << kMaxCodeBits;
        isOverSubscribed = taken > 1U << kMaxCodeBits;
        for (size_t symbol = 0; symbol < lengths.size(); ++symbol) {
            if (lengths[symbol] != 0) {
                sorted[place[lengths[symbol]]++] = static_cast<uint16_t>(symbol);
            }
        }
    }
    static_assert(uint64_t{kLiteralSymbols} << (kMaxCodeBits - 1) <= UINT32_MAX, "`taken` fits");
};

// Index bits of the subtable whose first code has `bits` bits, `tableBits` of them in the first
// table: as many as the codes still to come need to fill it. Codes come shortest first, so those
// of this subtable are the next ones; taking one bit more doubles what they have filled so far.
// `left` counts the codes to come, by length. A complete code always fills it in the end, at the
// longest code at the latest, which keeps the index below kMaxCodeBits + 1.
constexpr unsigned SubtableBits(const std::array<unsigned, kMaxCodeBits + 1>& left, unsigned bits,
                                unsigned tableBits) {
    unsigned indexBits = bits - tableBits;
    for (uint32_t filled = left[bits]; filled < 1U << indexBits;) {
        ++indexBits;
        filled = 2 * filled + left[tableBits + indexBits];
    }
    return indexBits;
}

// The table of a complete code, built in the order of the codes.
//
// First the codes that fit the first table. It grows by doubling: when all codes of up to n bits
// stand in its first 2^n places, the bit above them may be anything, so a copy of these places
// behind them is right for n + 1 bits, and the codes of n + 1 bits overwrite what is still free.
//
// Then the longer codes, subtable by subtable. As codes are consecutive, those that share their
// first bits follow each other: a prefix that differs from the one before opens a new subtable
// behind what is used. Within it, a code that is shorter than the index repeats at every distance
// of its own size, because the bits above it may be anything.
constexpr bool BuildComplete(CodeShape& shape, std::span<const uint32_t> symbolEntries,
                             std::span<uint32_t> storage, unsigned tableBits) {
    const uint16_t* symbol = shape.sorted.data();
    uint32_t code = 0;
    storage[0] = 0;
    for (unsigned bits = 1; bits <= tableBits; ++bits) {
        const size_t half = size_t{1} << (bits - 1);
        std::copy_n(storage.begin(), half, storage.begin() + static_cast<ptrdiff_t>(half));
        for (unsigned i = 0; i < shape.count[bits]; ++i) {
            storage[code] = WithCodeBits(symbolEntries[*symbol++], bits);
            code = NextReversedCode(code, bits);
        }
    }
    size_t used = size_t{1} << tableBits;
    size_t start = 0;
    size_t size = 0;
    uint32_t prefix = UINT32_MAX;
    for (unsigned bits = tableBits + 1; bits <= shape.longest; ++bits) {
        for (; shape.count[bits] > 0; --shape.count[bits]) {
            if (const uint32_t codePrefix = code & ((1U << tableBits) - 1); codePrefix != prefix) {
                prefix = codePrefix;
                const unsigned indexBits = SubtableBits(shape.count, bits, tableBits);
                start = used;
                size = size_t{1} << indexBits;
                used += size;
                // The tables' sizes make this impossible; it is what memory safety rests on.
                if (used > storage.size()) {
                    return false;
                }
                storage[prefix] = kEntryExceptional | kEntrySubtable | SymbolEntry(start, 0) |
                                  (indexBits << 8) | tableBits;
            }
            const uint32_t entry = WithCodeBits(symbolEntries[*symbol++], bits - tableBits);
            for (size_t i = code >> tableBits; i < size; i += size_t{1} << (bits - tableBits)) {
                storage[start + i] = entry;
            }
            code = NextReversedCode(code, bits);
        }
    }
    return true;
}

struct AlphabetTraits {
    std::span<const uint32_t> symbolEntries;
    unsigned tableBits;
    bool maybeIncomplete;
};

AlphabetTraits TraitsOf(HuffmanAlphabet alphabet) {
    switch (alphabet) {
        case HuffmanAlphabet::CodeLengths:
            return {kCodeLengthEntries, kCodeLengthTableBits, false};
        case HuffmanAlphabet::Literals:
            return {kLiteralEntries, kLiteralTableBits, true};
        default:
            return {kDistanceEntries, kDistanceTableBits, true};
    }
}

// The fixed codes are tables of this program: their longest code indexes them, so that they need
// no subtables.
template <unsigned kBits>
constexpr auto FixedTable(std::span<const uint8_t> lengths,
                          std::span<const uint32_t> symbolEntries) {
    std::array<uint32_t, size_t{1} << kBits> entries{};
    CodeShape shape(lengths);
    return shape.isComplete && shape.longest == kBits &&
                   BuildComplete(shape, symbolEntries, entries, kBits)
               ? entries
               : throw "no fixed code";
}

constexpr unsigned kFixedLiteralBits = 9;
constexpr unsigned kFixedDistanceBits = 5;

constexpr auto kFixedLiteralEntries = [] {
    std::array<uint8_t, kLiteralSymbols> lengths;
    std::fill_n(lengths.begin(), 144, uint8_t{8});
    std::fill_n(lengths.begin() + 144, 112, uint8_t{9});
    std::fill_n(lengths.begin() + 256, 24, uint8_t{7});
    std::fill_n(lengths.begin() + 280, 8, uint8_t{8});
    return FixedTable<kFixedLiteralBits>(lengths, kLiteralEntries);
}();

constexpr auto kFixedDistanceEntries = [] {
    std::array<uint8_t, kDistanceSymbols> lengths;
    lengths.fill(kFixedDistanceBits);
    return FixedTable<kFixedDistanceBits>(lengths, kDistanceEntries);
}();

}  // namespace

bool BuildHuffmanTable(HuffmanAlphabet alphabet, std::span<const uint8_t> lengths,
                       std::span<uint32_t> storage, HuffmanTable& table) {
    const AlphabetTraits traits = TraitsOf(alphabet);
    CodeShape shape(lengths);
    table = {storage.data(), std::clamp(shape.longest, 1U, traits.tableBits)};
    if (shape.isComplete) {
        return BuildComplete(shape, traits.symbolEntries, storage, table.bits);
    }
    if (!traits.maybeIncomplete || shape.isOverSubscribed || shape.longest > 1) {
        return false;
    }
    // One code of 1 bit, which is 0, or none: the patterns that are left over consume a bit, so
    // that they cannot be met beyond the end of the input (see NextEntry).
    const uint32_t invalid = WithCodeBits(kEntryExceptional, 1);
    storage[0] =
        shape.longest == 0 ? invalid : WithCodeBits(traits.symbolEntries[shape.sorted[0]], 1);
    storage[1] = invalid;
    return true;
}

HuffmanTable FixedLiteralTable() {
    return {kFixedLiteralEntries.data(), kFixedLiteralBits};
}

HuffmanTable FixedDistanceTable() {
    return {kFixedDistanceEntries.data(), kFixedDistanceBits};
}

}  // namespace imgbasic
