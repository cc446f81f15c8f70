#include "lib/image/inflate/fast_decode.h"

#include <algorithm>
#include <array>

namespace imgbasic {
namespace {

// The loop of DecodeFast rests on three budgets, which are checked here once instead of at every
// step: bits in the buffer, bytes of input to refill from, and bytes of output to write to.

// Bits. A refill leaves kFilledBits at least.
constexpr unsigned kMaxDistanceBits = kMaxCodeBits + kMaxDistanceExtraBits;
static_assert(kMaxDistanceBits <= kFilledBits, "a distance makes sure of its own bits");

// An iteration may begin one literal after the refill (its next entry was looked up without
// another) and takes up to two literals more before it comes to a length. Codes that are literals
// in the first table have no more bits than index it. Only the length, which the last of these
// lookups found, may go through a subtable and have extra bits.
static_assert(3 * kLiteralTableBits + kMaxCodeBits + kMaxLengthExtraBits <= kFilledBits);

// Input. A refill reads 8 bytes and moves on by 7 at most. Up to the next check there are three:
// the one before the loop or none, one for a distance, and one for the next symbol.
constexpr ptrdiff_t kFastInputRoom = 24;
constexpr ptrdiff_t kMostRefills = 3;
static_assert((kMostRefills - 1) * 7 + 8 <= kFastInputRoom);

// Output. Three literals; or two and the longest match, whose copy goes beyond its end by less
// than the words that are copied whatever its length.
constexpr size_t kLongestMatch = 258;
constexpr size_t kWord = sizeof(uint64_t);
constexpr size_t kUnconditionalWords = 4;
constexpr ptrdiff_t kFastOutputRoom = 2 + kLongestMatch + kUnconditionalWords * kWord;
static_assert(kFastOutputRoom >= 3);

// A distance of up to 8 repeats a pattern of that many bytes, which one word holds. Multiplying
// the pattern by a number with a 1 at every multiple of its length copies it into the places that
// it leaves free; what no longer fits falls off the top. For a distance of 3, in bytes, the lowest
// at the right:
//
//      0 0 0 0 0 c b a  *  0 1 0 0 1 0 0 1  =  b a c b a c b a
//
// Written again and again, such words must advance by a whole number of patterns; kPatternStep is
// the greatest that a word holds: 6 for a distance of 3, so that the next word overwrites the two
// bytes of the third pattern with themselves.
constexpr std::array<uint64_t, kWord + 1> kRepeat{0,
                                                  0x0101010101010101,
                                                  0x0001000100010001,
                                                  0x0001000001000001,
                                                  0x0000000100000001,
                                                  0x0000010000000001,
                                                  0x0001000000000001,
                                                  0x0100000000000001,
                                                  1};
constexpr std::array<uint8_t, kWord + 1> kPatternStep{0, 8, 8, 6, 8, 5, 6, 7, 8};

constexpr bool PatternsRepeat() {
    for (size_t distance = 1; distance <= kWord; ++distance) {
        uint64_t ones = 0;
        for (size_t place = 0; place < kWord; place += distance) {
            ones |= uint64_t{1} << (8 * place);
        }
        if (kRepeat[distance] != ones || kPatternStep[distance] != kWord / distance * distance) {
            return false;
        }
    }
    return true;
}
static_assert(PatternsRepeat());

// Copies at least `length` bytes from `distance` before `to`, a word or a pattern at a time; up to
// kUnconditionalWords words are written whatever the length.
//
// The first word is made the same way for all: the `period` bytes at `from`, repeated. At a
// distance of 8 and more that is the word at `from` itself, below 8 the pattern; so that there is
// no branch on the distance before the first store, which for most matches is all. (Loading the
// pattern also reads up to 7 bytes from `to` on, which are within the output; the mask drops them.)
//
// Far matches then copy the second to fourth word without asking: up to 32 bytes there is no
// branch on the length that could be predicted wrong. A word is loaded before it is stored, and
// from at least 8 bytes before where it is stored: it never contains bytes that the copy has not
// written yet.
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

// The reader's state in registers. Only the low byte of `count` means anything, so that a whole
// entry, whose low byte says how many bits it consumes, can be taken off it; being enough bits, it
// never borrows.
struct FastBits {
    uint64_t bits;
    uint32_t count;
    const uint8_t* next;

    unsigned Count() const { return static_cast<uint8_t>(count); }

    void Refill() {
        next = FillBits(bits, count & 63, next);
        count |= kFilledBits;
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
static_assert(kMaxDistanceBits < 256, "the low byte of an entry is all that Consume takes off");

}  // namespace

// An iteration decodes up to three literals, or up to two and a match. Literals come in runs, so
// they are tried first, and only the third spends a refill. The entry of the next symbol is looked
// up as early as its bits are there: loading it then goes on beside the rest of the iteration,
// which for a match is the copy.
//
//      literal, literal, refill, literal --------------------------------------> check, again
//      literal, literal, long code -> literal (refill first) ------------------> check, again
//                                  -> end of the block or bits not valid ------> done
//      literal, literal, length, (refill,) distance, refill, copy -------------> check, again
SymbolRun DecodeFast(BitReader& reader, InflateOutput& output, const BlockCodes& codes,
                     BadSymbol& bad) {
    FastBits in{reader.bits, reader.count, reader.next};
    uint8_t* out = output.next;
    const HuffmanTable literals = codes.literals;
    const HuffmanTable distances = codes.distances;
    SymbolRun run = SymbolRun::NearAnEnd;

    if (reader.end - in.next < kFastInputRoom || output.end - out < kFastOutputRoom) {
        return run;
    }
    const uint8_t* const lastInput = reader.end - kFastInputRoom;
    const uint8_t* const lastOutput = output.end - kFastOutputRoom;
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
        // One test for everything that is neither a literal nor a length of the first table.
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
                run = SymbolRun::EndOfBlock;
                break;
            }
            if ((entry & kEntryExceptional) != 0) {
                bad = {entry};
                run = SymbolRun::BadLiteral;
                break;
            }
        }
        const uint32_t length = in.TakeValue(entry);

        // After few literals the bits still suffice, and the lookup need not wait for a refill.
        if (in.Count() < kMaxDistanceBits) {
            in.Refill();
        }
        entry = distances.First(in.bits);
        if ((entry & kEntrySubtable) != 0) {
            in.Consume(entry);
            entry = distances.Second(entry, in.bits);
        }
        if ((entry & kEntryExceptional) != 0) {
            bad = {entry};
            run = SymbolRun::BadDistance;
            break;
        }
        const uint32_t distance = in.TakeValue(entry);
        if (distance > static_cast<size_t>(out - output.begin)) {
            bad = {entry, distance};
            run = SymbolRun::BadDistance;
            break;
        }
        in.Refill();
        entry = literals.First(in.bits);
        CopyMatch(out, distance, length);
        out += length;
    } while (in.next <= lastInput && out <= lastOutput);
    // An entry that was looked up has not been consumed: its bits go back with the others.
    reader.bits = in.bits;
    reader.count = in.Count();
    reader.next = in.next;
    output.next = out;
    return run;
}

}  // namespace imgbasic
