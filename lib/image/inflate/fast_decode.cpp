#include "lib/image/inflate/fast_decode.h"

#include <algorithm>
#include <array>

namespace imgbasic {
namespace {

// A refill leaves at least this many bits, since it adds whole bytes to a 64-bit buffer.
constexpr unsigned kRefilledBits = 56;

// One refill has the bits of a literal whose next entry is looked up without another, two
// literals more and a length; a distance makes sure of its own.
static_assert(3 * kLiteralTableBits + kMaxCodeBits + kMaxLengthExtraBits <= kRefilledBits);
constexpr unsigned kMaxDistanceBits = kMaxCodeBits + kMaxDistanceExtraBits;
static_assert(kMaxDistanceBits <= kRefilledBits);

// A refill reads 8 bytes and moves on by 7 at most; there are three up to the next check.
constexpr ptrdiff_t kFastInputRoom = 24;

constexpr size_t kLongestMatch = 258;
constexpr size_t kWord = sizeof(uint64_t);
constexpr size_t kUnconditionalWords = 4;
// Two literals and the longest match, whose copy goes less than those words beyond its end.
constexpr ptrdiff_t kFastOutputRoom = 2 + kLongestMatch + kUnconditionalWords * kWord;

// A distance of up to 8 repeats a pattern that one word holds; these multiply its bytes into
// the places that they leave free, and say how far a whole number of patterns goes.
constexpr std::array<uint64_t, 9> kRepeat{0,
                                          0x0101010101010101,
                                          0x0001000100010001,
                                          0x0001000001000001,
                                          0x0000000100000001,
                                          0x0000010000000001,
                                          0x0001000000000001,
                                          0x0100000000000001,
                                          1};
constexpr std::array<uint8_t, 9> kPatternStep{0, 8, 8, 6, 8, 5, 6, 7, 8};

// Copies at least `length` bytes from `distance` before `to`, a word or a pattern at a time. The
// first word is the same for both, and for most matches it is all.
inline void CopyMatch(uint8_t* to, size_t distance, size_t length) {
    const uint8_t* from = to - distance;
    const size_t period = std::min(distance, kWord);
    const uint64_t first = (LoadWord(from) & (~uint64_t{0} >> (64 - 8 * period))) * kRepeat[period];
    StoreWord(to, first);
    if (length <= kWord) {
        return;
    }
    const uint8_t* const end = to + length;
    if (distance < kWord) {
        const size_t step = kPatternStep[distance];
        for (to += step; to < end; to += step) {
            StoreWord(to, first);
        }
        return;
    }
    for (size_t i = 1; i < kUnconditionalWords; ++i) {
        StoreWord(to + i * kWord, LoadWord(from + i * kWord));
    }
    for (size_t done = kUnconditionalWords * kWord; done < length; done += kWord) {
        StoreWord(to + done, LoadWord(from + done));
    }
}

// The reader's state in registers. Above its bits the buffer may hold some of the bytes at
// `next`; refilling puts the same bits there again. Only the low byte of `count` means anything,
// so that a whole entry can be taken off it; being enough bits, it never borrows.
struct FastBits {
    uint64_t bits;
    uint32_t count;
    const uint8_t* next;

    unsigned Count() const { return static_cast<uint8_t>(count); }

    void Refill() {
        bits |= LoadWord(next) << (count & 63);
        next += 7 - ((count >> 3) & 7);
        count |= kRefilledBits;
    }

    void Consume(uint32_t entry) {
        bits >>= EntryBits(entry);
        count -= entry;
    }

    // Consumes a length's or a distance's bits and returns the whole value.
    uint32_t TakeValue(uint32_t entry) {
        const uint64_t own = LowBits(bits, EntryBits(entry)) >> EntryCodeBits(entry);
        Consume(entry);
        return EntryValue(entry) + static_cast<uint32_t>(own);
    }
};

}  // namespace

SymbolRun DecodeFast(BitReader& reader, InflateOutput& output, const BlockCodes& codes) {
    FastBits in{reader.bits, reader.count, reader.next};
    uint8_t* out = output.next;
    const HuffmanTable literals = codes.literals;
    const HuffmanTable distances = codes.distances;
    SymbolRun run{SymbolRun::NearAnEnd};

    if (reader.end - in.next < kFastInputRoom || output.end - out < kFastOutputRoom) {
        return run;
    }
    const uint8_t* const lastInput = reader.end - kFastInputRoom;
    const uint8_t* const lastOutput = output.end - kFastOutputRoom;
    // The next symbol's entry is looked up as early as its bits are there, so that loading it
    // goes on beside the rest of the iteration before.
    in.Refill();
    uint32_t entry = literals.First(in.bits);
    const auto takeLiteral = [&] {
        *out++ = static_cast<uint8_t>(EntryValue(entry));
        in.Consume(entry);
        entry = literals.First(in.bits);
    };
    do {
        if ((entry & kEntryLiteral) != 0) {
            takeLiteral();
            if ((entry & kEntryLiteral) != 0) {
                takeLiteral();
                if ((entry & kEntryLiteral) != 0) {
                    in.Refill();
                    takeLiteral();
                    continue;
                }
            }
        }
        if ((entry & kEntryExceptional) != 0) {
            if ((entry & kEntrySubtable) != 0) {
                in.Consume(entry);
                entry = literals.Second(entry, in.bits);
                if ((entry & kEntryLiteral) != 0) {
                    in.Refill();
                    takeLiteral();
                    continue;
                }
            }
            if ((entry & kEntryEndOfBlock) != 0) {
                in.Consume(entry);
                run.outcome = SymbolRun::EndOfBlock;
                break;
            }
            if ((entry & kEntryExceptional) != 0) {
                run = {SymbolRun::BadLiteral, entry};
                break;
            }
        }
        const uint32_t length = in.TakeValue(entry);

        if (in.Count() < kMaxDistanceBits) {
            in.Refill();
        }
        entry = distances.First(in.bits);
        if ((entry & kEntrySubtable) != 0) {
            in.Consume(entry);
            entry = distances.Second(entry, in.bits);
        }
        if ((entry & kEntryExceptional) != 0) {
            run = {SymbolRun::BadDistance, entry};
            break;
        }
        const uint32_t distance = in.TakeValue(entry);
        if (distance > static_cast<size_t>(out - output.begin)) {
            run = {SymbolRun::BadDistance, entry, distance};
            break;
        }
        in.Refill();
        entry = literals.First(in.bits);
        CopyMatch(out, distance, length);
        out += length;
    } while (in.next <= lastInput && out <= lastOutput);
    reader.bits = LowBits(in.bits, in.Count());
    reader.count = in.Count();
    reader.next = in.next;
    output.next = out;
    return run;
}

}  // namespace imgbasic
