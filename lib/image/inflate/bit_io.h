#pragma once

#include <cstddef>
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

/// The bits that FillBits leaves at least: whole bytes fill the buffer up to its last 8 bits.
constexpr unsigned kFilledBits = 56;

/// Fills a buffer that holds `count` bits, 63 at most, from the 8 bytes at `next`, without a branch
/// (after Giesen). Returns where to go on; there are count | kFilledBits bits then.
///
///      bits    | ? ? ? ? ? ? | b b b b b b b b b b b b |      '?' zeros, or bits of `next`
///                             <------- count --------->       the next bit is the lowest
///      word    | the 8 bytes at `next`, shifted left by `count`, cut off at bit 64 |
///
/// OR fills the buffer to its top. Of the word's bytes (63 - count) / 8 are in it as a whole, which
/// is 7 - count / 8: so far `next` moves, and that many bytes make the count 56 + count % 8. The
/// bits above it belong to the byte at `next`; they will be put there again, and until then they
/// do no harm.
inline const uint8_t* FillBits(uint64_t& bits, unsigned count, const uint8_t* next) {
    bits |= LoadWord(next) << count;
    return next + 7 - count / 8;
}
static_assert((63 | kFilledBits) == 63 && (kFilledBits & 7) == 0, "count | kFilledBits is a sum");

/// The compressed bytes as a stream of bits, lowest bit of a byte first. `bits` holds `count` bits
/// that were taken from before `next`, and above them zeros or what follows them (see FillBits).
struct BitReader {
    uint64_t bits = 0;
    unsigned count = 0;
    const uint8_t* next;
    const uint8_t* end;

    explicit BitReader(std::span<const uint8_t> bytes)
        : next(bytes.data()), end(bytes.data() + bytes.size()) {}

    /// True when `wanted` bits, kFilledBits at most, are in `bits` now; false at the end of the
    /// input.
    bool Need(unsigned wanted) {
        if (count < wanted && end - next >= ptrdiff_t{sizeof(uint64_t)}) {
            next = FillBits(bits, count, next);
            count |= kFilledBits;
        }
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
