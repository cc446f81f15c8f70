#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace imgbasic {

// Look-up tables for DEFLATE's Huffman codes (RFC 1951, 3.2). A table is indexed by the next
// bits of the stream; an entry holds all that decoding a symbol takes (after Biggers' libdeflate):
//
//   bits  0..7   bits to consume: code and extra bits together
//   bits  8..11  bits of the code alone; of a subtable pointer, the subtable's index bits
//   bit   12     a literal
//   bit   13     the end of the block
//   bit   14     points to a subtable
//   bit   15     set together with 13 or 14; alone: bits that are not valid
//   bits 16..31  the literal, the base of the length or distance, the code length, the place of
//                the subtable, the invalid symbol (0 when no symbol has these bits)

constexpr uint32_t kEntryLiteral = 1 << 12;
constexpr uint32_t kEntryEndOfBlock = 1 << 13;
constexpr uint32_t kEntrySubtable = 1 << 14;
constexpr uint32_t kEntryExceptional = 1 << 15;

/// Bits to consume, 28 at most: the mask is the one that a 64-bit shift applies anyway.
constexpr unsigned EntryBits(uint32_t entry) {
    return entry & 63;
}
constexpr unsigned EntryCodeBits(uint32_t entry) {
    return (entry >> 8) & 15;
}
constexpr uint32_t EntryValue(uint32_t entry) {
    return entry >> 16;
}

constexpr unsigned kMaxCodeBits = 15;
constexpr unsigned kMaxLengthExtraBits = 5;
constexpr unsigned kMaxDistanceExtraBits = 13;

/// The alphabets' sizes; the last two symbols of the literals and of the distances are never
/// valid in a stream, but the fixed codes count them in.
constexpr size_t kLengthSymbols = 19;
constexpr size_t kLiteralSymbols = 288;
constexpr size_t kDistanceSymbols = 32;
constexpr size_t kEndOfBlockSymbol = 256;

// Index bits of the first table, and entries that any complete code needs with it at most,
// subtables included: the counts that zlib's "enough" computes for these alphabets.
constexpr unsigned kLengthTableBits = 7;
constexpr unsigned kLiteralTableBits = 11;
constexpr unsigned kDistanceTableBits = 8;
constexpr size_t kLengthTableSize = 128;
constexpr size_t kLiteralTableSize = 2342;
constexpr size_t kDistanceTableSize = 402;

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

enum class HuffmanAlphabet { Lengths, Literals, Distances };

/// Builds the table of the canonical code whose symbol i has `lengths[i]` bits (0 to 15, 0: the
/// symbol is not used) in `storage`. A code must be complete, with the exceptions that encoders
/// rely on: literals and distances may have one symbol only, of 1 bit, and distances none. False
/// for any other code, and for one that `storage` has no room for.
bool BuildHuffmanTable(HuffmanAlphabet alphabet, std::span<const uint8_t> lengths,
                       std::span<uint32_t> storage, HuffmanTable& table);

/// The tables of the fixed codes (RFC 1951, 3.2.6).
HuffmanTable FixedLiteralTable();
HuffmanTable FixedDistanceTable();

}  // namespace imgbasic
