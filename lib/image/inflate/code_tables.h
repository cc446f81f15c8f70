#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace imgbasic {

// Look-up tables for DEFLATE's Huffman codes (RFC 1951, 3.2), one level deep or two:
//
//      stream  ... x x x x x x x x x x x x x x x   (the next bit is the lowest)
//                  |<- subtable ->|<-- first -->|
//                    index bits     table bits
//
// The first table is indexed by the next bits, as many as its `bits`. A code that is no longer
// has an entry wherever the bits above it may be anything; longer ones share the entry of their
// first bits, which points to a subtable, indexed by the bits that follow. An entry holds all
// that decoding a symbol takes, so that one load answers everything (after Biggers' libdeflate):
//
//      31                            16  15   14   13   12 11       8 7              0
//     | value                          | ex | sub| end| lit| code bits | bits to consume |
//
//   value        the literal; the base of the length or distance; the code length; of a pointer,
//                the place of the subtable; of bits that are not valid, the invalid symbol (0 when
//                no symbol has these bits)
//   ex           not an ordinary symbol: set together with sub or end; alone, bits not valid
//   sub          points to a subtable
//   end          the end of the block
//   lit          a literal
//   code bits    bits of the code alone, in this table; of a pointer, the subtable's index bits
//   consume      bits of code and extra bits together; of a pointer, the first table's bits
//
// A length's or distance's own bits thus lie between `code bits` and `consume`: taking `consume`
// bits off the stream and shifting them right by `code bits` leaves what is added to the base.

constexpr uint32_t kEntryLiteral = 1 << 12;
constexpr uint32_t kEntryEndOfBlock = 1 << 13;
constexpr uint32_t kEntrySubtable = 1 << 14;
constexpr uint32_t kEntryExceptional = 1 << 15;

constexpr unsigned kMaxCodeBits = 15;
constexpr unsigned kMaxLengthExtraBits = 5;
constexpr unsigned kMaxDistanceExtraBits = 13;

/// The mask is the one that a 64-bit shift applies anyway, so that it costs nothing.
constexpr unsigned EntryBits(uint32_t entry) {
    return entry & 63;
}
static_assert(kMaxCodeBits + kMaxDistanceExtraBits <= EntryBits(UINT32_MAX));
constexpr unsigned EntryCodeBits(uint32_t entry) {
    return (entry >> 8) & 15;
}
static_assert(kMaxCodeBits <= EntryCodeBits(UINT32_MAX));
constexpr uint32_t EntryValue(uint32_t entry) {
    return entry >> 16;
}

/// The alphabets' sizes. The last two symbols of the literals and of the distances are never
/// valid in a stream, but the fixed codes count them in.
constexpr size_t kCodeLengthSymbols = 19;
constexpr size_t kLiteralSymbols = 288;  ///< literals, end of block and match lengths
constexpr size_t kDistanceSymbols = 32;
constexpr size_t kEndOfBlockSymbol = 256;

// Index bits of the first table. More make it slower to build and crowd the cache, fewer send more
// symbols through a subtable. The code of the code lengths has no codes above 7 bits, since their
// lengths are written in 3, and thus no subtables.
constexpr unsigned kCodeLengthTableBits = 7;
constexpr unsigned kLiteralTableBits = 11;
constexpr unsigned kDistanceTableBits = 8;

// Entries that any complete code needs at most, subtables included. How many depends on how its
// codes share prefixes; the greatest number over all codes is what zlib's "enough" finds, for
// (symbols, index bits, longest code) of (288, 11, 15) and (32, 8, 15).
constexpr size_t kCodeLengthTableSize = size_t{1} << kCodeLengthTableBits;
constexpr size_t kLiteralTableSize = 2342;
constexpr size_t kDistanceTableSize = 402;
static_assert(kLiteralTableSize > size_t{1} << kLiteralTableBits);
static_assert(kDistanceTableSize > size_t{1} << kDistanceTableBits);
static_assert(kLiteralTableSize <= EntryValue(UINT32_MAX), "a pointer holds a subtable's place");

/// A finished table, borrowed: the next `bits` bits of the stream index `entries`.
struct HuffmanTable {
    const uint32_t* entries = nullptr;
    unsigned bits = 0;

    uint32_t First(uint64_t stream) const { return entries[stream & ((uint64_t{1} << bits) - 1)]; }
    /// Follows a subtable pointer; `stream` begins after the pointer's bits.
    uint32_t Second(uint32_t pointer, uint64_t stream) const {
        return entries[EntryValue(pointer) +
                       (stream & ((uint64_t{1} << EntryCodeBits(pointer)) - 1))];
    }
};

enum class HuffmanAlphabet { CodeLengths, Literals, Distances };

/// Builds the table of the canonical code whose symbol i has `lengths[i]` bits (0 to 15, 0: the
/// symbol is not used) in `storage`, which has the alphabet's table size. A code must be complete,
/// with the exceptions that encoders rely on: literals and distances may have one symbol only, of
/// 1 bit, and distances none. False for any other code, and for one that `storage` has no room
/// for.
bool BuildHuffmanTable(HuffmanAlphabet alphabet, std::span<const uint8_t> lengths,
                       std::span<uint32_t> storage, HuffmanTable& table);

/// The tables of the fixed codes (RFC 1951, 3.2.6).
HuffmanTable FixedLiteralTable();
HuffmanTable FixedDistanceTable();

}  // namespace imgbasic
