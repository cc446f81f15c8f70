#include "lib/image/inflate/code_tables.h"

#include <algorithm>
#include <bit>

namespace imgbasic {
namespace {

// What a symbol's entries have in common; the code's length is added when a table is built.
constexpr uint32_t SymbolEntry(size_t value, unsigned extraBits) {
    return static_cast<uint32_t>(value << 16) | extraBits;
}

constexpr std::array<uint32_t, kLengthSymbols> LengthSymbols() {
    std::array<uint32_t, kLengthSymbols> entries{};
    for (size_t symbol = 0; symbol < entries.size(); ++symbol) {
        entries[symbol] = SymbolEntry(symbol, 0);
    }
    return entries;
}

// Bases and extra bits follow from each other: every symbol begins where the one before ends.
constexpr std::array<uint32_t, kLiteralSymbols> LiteralSymbols() {
    std::array<uint32_t, kLiteralSymbols> entries{};
    for (size_t byte = 0; byte < 256; ++byte) {
        entries[byte] = kEntryLiteral | SymbolEntry(byte, 0);
    }
    entries[kEndOfBlockSymbol] = kEntryExceptional | kEntryEndOfBlock;
    uint32_t base = 3;
    for (unsigned i = 0; i < 28; ++i) {
        const unsigned extraBits = i < 8 ? 0 : (i - 4) / 4;
        entries[257 + i] = SymbolEntry(base, extraBits);
        base += 1U << extraBits;
    }
    entries[285] = SymbolEntry(258, 0);
    entries[286] = kEntryExceptional | SymbolEntry(286, 0);
    entries[287] = kEntryExceptional | SymbolEntry(287, 0);
    return entries;
}

constexpr std::array<uint32_t, kDistanceSymbols> DistanceSymbols() {
    std::array<uint32_t, kDistanceSymbols> entries{};
    uint32_t base = 1;
    for (unsigned symbol = 0; symbol < 30; ++symbol) {
        const unsigned extraBits = symbol < 4 ? 0 : (symbol - 2) / 2;
        entries[symbol] = SymbolEntry(base, extraBits);
        base += 1U << extraBits;
    }
    entries[30] = kEntryExceptional | SymbolEntry(30, 0);
    entries[31] = kEntryExceptional | SymbolEntry(31, 0);
    return entries;
}

constexpr auto kLengthEntries = LengthSymbols();
constexpr auto kLiteralEntries = LiteralSymbols();
constexpr auto kDistanceEntries = DistanceSymbols();

constexpr uint32_t WithCodeBits(uint32_t symbolEntry, unsigned codeBits) {
    return symbolEntry + (codeBits << 8) + codeBits;
}

// Codes are read from their first bit on but indexed from the lowest: the next code of the same
// length has its bits counted up from the top. From the last code, all ones, it is 0.
uint32_t NextReversedCode(uint32_t code, unsigned bits) {
    const uint32_t zeros = code ^ ((1U << bits) - 1);
    if (zeros == 0) {
        return 0;
    }
    const uint32_t bit = std::bit_floor(zeros);
    return (code & (bit - 1)) | bit;
}

struct CodeShape {
    std::array<unsigned, kMaxCodeBits + 1> count{};  // symbols by code length
    std::array<uint16_t, kLiteralSymbols> sorted;    // symbols in use, shortest code first
    unsigned longest = 0;
    bool isComplete = false;
    bool isOverSubscribed = false;

    explicit CodeShape(std::span<const uint8_t> lengths) {
        for (const uint8_t length : lengths) {
            ++count[length];
        }
        count[0] = 0;
        std::array<unsigned, kMaxCodeBits + 2> place{};
        uint32_t taken = 0;  // in codes of the greatest length
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
};

// Index bits of the subtable whose first code has `bits` bits, `tableBits` of them in the first
// table: as many as the codes still to come need to fill it. `left` counts those, by length.
unsigned SubtableBits(const std::array<unsigned, kMaxCodeBits + 1>& left, unsigned bits,
                      unsigned tableBits) {
    unsigned indexBits = bits - tableBits;
    for (uint32_t filled = left[bits]; filled < 1U << indexBits;) {
        ++indexBits;
        filled = 2 * filled + left[tableBits + indexBits];
    }
    return indexBits;
}

// The table of a complete code. The first table is filled by doubling: when all codes of up to n
// bits stand in its first 2^n places, a copy of these behind them is right for n + 1 bits.
bool BuildComplete(CodeShape& shape, std::span<const uint32_t> symbolEntries,
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
        case HuffmanAlphabet::Lengths:
            return {kLengthEntries, kLengthTableBits, false};
        case HuffmanAlphabet::Literals:
            return {kLiteralEntries, kLiteralTableBits, true};
        default:
            return {kDistanceEntries, kDistanceTableBits, true};
    }
}

struct FixedTables {
    std::array<uint32_t, kLiteralTableSize> literalStorage;
    std::array<uint32_t, kDistanceTableSize> distanceStorage;
    HuffmanTable literals;
    HuffmanTable distances;

    FixedTables() {
        std::array<uint8_t, kLiteralSymbols> lengths;
        std::fill_n(lengths.begin(), 144, uint8_t{8});
        std::fill_n(lengths.begin() + 144, 112, uint8_t{9});
        std::fill_n(lengths.begin() + 256, 24, uint8_t{7});
        std::fill_n(lengths.begin() + 280, 8, uint8_t{8});
        BuildHuffmanTable(HuffmanAlphabet::Literals, lengths, literalStorage, literals);
        std::fill_n(lengths.begin(), kDistanceSymbols, uint8_t{5});
        BuildHuffmanTable(HuffmanAlphabet::Distances, std::span(lengths).first(kDistanceSymbols),
                          distanceStorage, distances);
    }
};

const FixedTables& Fixed() {
    static const FixedTables tables;
    return tables;
}

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
    const uint32_t invalid = WithCodeBits(kEntryExceptional, 1);
    storage[0] =
        shape.longest == 0 ? invalid : WithCodeBits(traits.symbolEntries[shape.sorted[0]], 1);
    storage[1] = invalid;
    return true;
}

HuffmanTable FixedLiteralTable() {
    return Fixed().literals;
}

HuffmanTable FixedDistanceTable() {
    return Fixed().distances;
}

}  // namespace imgbasic
