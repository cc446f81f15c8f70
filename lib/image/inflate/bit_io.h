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

constexpr uint64_t LowBits(uint64_t bits, unsigned count) {
    return bits & ((uint64_t{1} << count) - 1);
}

/// The compressed bytes as a stream of bits, lowest bit of a byte first. `bits` holds `count`
/// bits that were taken from before `next`, and zeros above them.
struct BitReader {
    uint64_t bits = 0;
    unsigned count = 0;
    const uint8_t* next;
    const uint8_t* end;

    explicit BitReader(std::span<const uint8_t> bytes)
        : next(bytes.data()), end(bytes.data() + bytes.size()) {}

    /// True when `wanted` bits, 56 at most, are in `bits` now; false at the end of the input.
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

    /// Goes on at the next whole byte and gives the bytes that were taken ahead back to `next`.
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
