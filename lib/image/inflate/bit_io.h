#pragma once

#include <cstdint>
#include <cstring>
#include <span>

namespace imgbasic {

inline uint64_t LoadWord(const uint8_t* from) {
    uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

inline void StoreWord(uint8_t* to, uint64_t word) {
    std::memcpy(to, &word, sizeof word);
}

/// The low `count` bits, 63 at most.
constexpr uint64_t LowBits(uint64_t bits, unsigned count) {
    return bits & ((uint64_t{1} << count) - 1);
}

/// The compressed bytes as a stream of bits, lowest bit of a byte first:
///
///      bits   | 0 ... 0 | b b b b b b b b |      bytes   ... already taken | next ... end
///                        <---- count ----> the next bit of the stream is the lowest
///
/// What lies above `count` is zero: that is what lets Need add a byte by OR, and lets a table be
/// indexed with more bits than there are (see NextEntry).
struct BitReader {
    /// Bits that Need can provide: it adds whole bytes while fewer than that are there, so that
    /// the last one still has room below bit 64.
    static constexpr unsigned kMostNeeded = 56;
    static_assert(kMostNeeded - 1 + 8 < 64, "LowBits and shifts by `count` take 63 at most");

    uint64_t bits = 0;
    unsigned count = 0;
    const uint8_t* next;
    const uint8_t* end;

    explicit BitReader(std::span<const uint8_t> bytes)
        : next(bytes.data()), end(bytes.data() + bytes.size()) {}

    /// True when `wanted` bits, kMostNeeded at most, are in `bits` now; false at the end of the
    /// input.
    bool Need(unsigned wanted) {
        while (count < wanted) {
            if (next == end) {
                return false;
            }
            bits |= uint64_t{*next++} << count;
            count += 8;
        }
        return true;
    }

    /// Takes bits that Need has made sure of.
    uint32_t Take(unsigned wanted) {
        const auto taken = static_cast<uint32_t>(LowBits(bits, wanted));
        bits >>= wanted;
        count -= wanted;
        return taken;
    }

    /// Goes on at the next whole byte: drops the rest of the byte that is being read, and gives
    /// the whole bytes that were taken ahead of it back to `next`.
    void AlignToByte() {
        next -= count / 8;
        bits = 0;
        count = 0;
    }
};

/// Where decoded bytes go: [begin, next) is what matches may refer to, [next, end) is to be
/// filled.
struct InflateOutput {
    uint8_t* begin;
    uint8_t* next;
    uint8_t* end;
};

}  // namespace imgbasic
