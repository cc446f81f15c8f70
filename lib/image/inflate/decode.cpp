#include "lib/image/inflate/decode.h"

#include <algorithm>

namespace imgbasic {
namespace {

// A dynamic block's header, lowest bits first, and what follows it:
//
//      literal codes - 257 | distance codes - 1 | code lengths - 4 | 3 bits for each of them | ...
//             5 bits               5 bits              4 bits
//
// The counts could announce 288 literals and 32 distances; only these many are allowed.
constexpr size_t kMaxLiteralCodes = 286;
constexpr size_t kMaxDistanceCodes = 30;
constexpr unsigned kHeaderBits = 5 + 5 + 4;
static_assert(kHeaderBits <= kFilledBits);
static_assert(kMaxLiteralCodes <= kLiteralSymbols && kMaxDistanceCodes <= kDistanceSymbols);
static_assert(kEndOfBlockSymbol < 257, "there is always a length for it");
static_assert(4 + LowBits(~0U, 4) == kCodeLengthSymbols, "no count is too large for them");

// In the fixed codes the end of the block has the first of the shortest codes: all zeros.
constexpr unsigned kFixedEndBits = 7;

// From this code length symbol on, they repeat one.
constexpr uint32_t kRepeatPrevious = 16;
struct Repeat {
    unsigned extraBits;
    size_t least;
};
constexpr std::array<Repeat, 3> kRepeats{{{2, 3}, {3, 3}, {7, 11}}};
static_assert(kRepeatPrevious + kRepeats.size() == kCodeLengthSymbols);

// The order in which the code of the code lengths is written: what is seldom used comes last, so
// that it can be left out.
constexpr std::array<uint8_t, kCodeLengthSymbols> kCodeLengthOrder{
    16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};

// Looks the next symbol up and makes sure of its code's and extra bits; false when the input
// ends before. Afterwards a subtable pointer's bits are taken, the symbol's are not.
//
// How many bits a symbol needs is known only from its entry. So the lookup is tried with the bits
// that are there, and repeated with more of them while they are fewer than what it finds needs.
// Behind them may be anything, and it may find any symbol; but an entry that needs no more bits
// than are there depends on these alone, and is the stream's. Every entry needs at least one bit,
// so that an empty reader reads on.
static_assert(kMaxCodeBits + kMaxDistanceExtraBits <= kFilledBits);
bool NextEntry(BitReader& reader, const HuffmanTable& table, uint32_t& entry) {
    for (;;) {
        unsigned pointerBits = 0;
        entry = table.First(reader.bits);
        if ((entry & kEntrySubtable) != 0) {
            pointerBits = EntryBits(entry);
            entry = table.Second(entry, reader.bits >> pointerBits);
        }
        if (pointerBits + EntryBits(entry) <= reader.count) {
            reader.Take(pointerBits);
            return true;
        }
        if (!reader.Need(reader.count + 1)) {
            return false;
        }
    }
}

// Takes code and extra bits together; the extra bits, above the code's, are added to the base.
uint32_t TakeValue(BitReader& reader, uint32_t entry) {
    const uint32_t own = reader.Take(EntryBits(entry)) >> EntryCodeBits(entry);
    return EntryValue(entry) + own;
}

}  // namespace

void InflateDecoder::Fail(InflateFault::Kind kind, uint32_t first, uint32_t second) {
    fault_ = {kind, first, second};
    stage_ = Stage::Finished;
}

void InflateDecoder::Decode(InflateOutput& output) {
    while (output.next != output.end && stage_ != Stage::Finished) {
        switch (stage_) {
            case Stage::BlockHeader:
                ReadBlockHeader();
                break;
            case Stage::Stored:
                CopyStored(output);
                break;
            default:
                DecodeCompressed(output);
        }
    }
}

void InflateDecoder::ReadBlockHeader() {
    if (isLastBlock_) {
        stage_ = Stage::Finished;
        return;
    }
    if (!reader_.Need(3)) {
        return Fail(InflateFault::InputEnd);
    }
    isLastBlock_ = reader_.Take(1) != 0;
    switch (reader_.Take(2)) {
        case 0:
            return ReadStoredHeader();
        case 1:
            // Empty blocks, which encoders write in order to flush, do not go through the loops.
            if (reader_.Need(kFixedEndBits) && LowBits(reader_.bits, kFixedEndBits) == 0) {
                reader_.Take(kFixedEndBits);
                return;
            }
            codes_ = {FixedLiteralTable(), FixedDistanceTable()};
            stage_ = Stage::Compressed;
            return;
        case 2:
            return ReadDynamicHeader();
        default:
            return Fail(InflateFault::BlockType);
    }
}

void InflateDecoder::ReadStoredHeader() {
    reader_.AlignToByte();
    if (!reader_.Need(32)) {
        return Fail(InflateFault::InputEnd);
    }
    const uint32_t length = reader_.Take(16);
    const uint32_t complement = reader_.Take(16);
    reader_.AlignToByte();
    if (length != (complement ^ 0xFFFF)) {
        return Fail(InflateFault::StoredLength, length, complement);
    }
    storedLeft_ = length;
    stage_ = Stage::Stored;
}

// The reader was left without bits: the block's bytes begin at `next`.
void InflateDecoder::CopyStored(InflateOutput& output) {
    const size_t count =
        std::min({size_t{storedLeft_}, static_cast<size_t>(reader_.end - reader_.next),
                  static_cast<size_t>(output.end - output.next)});
    output.next = std::copy_n(reader_.next, count, output.next);
    reader_.next += count;
    storedLeft_ -= static_cast<uint32_t>(count);
    if (storedLeft_ == 0) {
        stage_ = Stage::BlockHeader;
    } else if (reader_.next == reader_.end) {
        Fail(InflateFault::InputEnd);
    }
}

void InflateDecoder::ReadDynamicHeader() {
    if (!reader_.Need(kHeaderBits)) {
        return Fail(InflateFault::InputEnd);
    }
    const size_t literalCodes = reader_.Take(5) + 257;
    const size_t distanceCodes = reader_.Take(5) + 1;
    const size_t codeLengthCodes = reader_.Take(4) + 4;
    if (literalCodes > kMaxLiteralCodes || distanceCodes > kMaxDistanceCodes) {
        return Fail(InflateFault::TooManyCodes);
    }
    std::array<uint8_t, kCodeLengthSymbols> codeLengthLengths{};
    for (size_t i = 0; i < codeLengthCodes; ++i) {
        if (!reader_.Need(3)) {
            return Fail(InflateFault::InputEnd);
        }
        codeLengthLengths[kCodeLengthOrder[i]] = static_cast<uint8_t>(reader_.Take(3));
    }
    std::array<uint32_t, kCodeLengthTableSize> codeLengthStorage;
    HuffmanTable codeLengthTable;
    if (!BuildHuffmanTable(HuffmanAlphabet::CodeLengths, codeLengthLengths, codeLengthStorage,
                           codeLengthTable)) {
        return Fail(InflateFault::CodeLengthCode);
    }
    // The lengths of both codes are one sequence: a repeat may run from one into the other.
    std::array<uint8_t, kMaxLiteralCodes + kMaxDistanceCodes> storage;
    const std::span<uint8_t> lengths = std::span(storage).first(literalCodes + distanceCodes);
    if (!ReadCodeLengths(codeLengthTable, lengths)) {
        return;
    }
    if (lengths[kEndOfBlockSymbol] == 0 ||
        !BuildHuffmanTable(HuffmanAlphabet::Literals, lengths.first(literalCodes), literalStorage_,
                           codes_.literals)) {
        return Fail(InflateFault::LiteralTable);
    }
    if (!BuildHuffmanTable(HuffmanAlphabet::Distances, lengths.subspan(literalCodes),
                           distanceStorage_, codes_.distances)) {
        return Fail(InflateFault::DistanceTable);
    }
    stage_ = Stage::Compressed;
}

// Fills all of `lengths`, or fails.
bool InflateDecoder::ReadCodeLengths(const HuffmanTable& table, std::span<uint8_t> lengths) {
    for (size_t i = 0; i < lengths.size();) {
        uint32_t entry;
        if (!NextEntry(reader_, table, entry)) {
            Fail(InflateFault::InputEnd);
            return false;
        }
        const uint32_t symbol = TakeValue(reader_, entry);
        if (symbol < kRepeatPrevious) {
            lengths[i++] = static_cast<uint8_t>(symbol);
            continue;
        }
        const Repeat repeat = kRepeats[symbol - kRepeatPrevious];
        if (!reader_.Need(repeat.extraBits)) {
            Fail(InflateFault::InputEnd);
            return false;
        }
        const size_t count = repeat.least + reader_.Take(repeat.extraBits);
        if (count > lengths.size() - i || (symbol == kRepeatPrevious && i == 0)) {
            Fail(InflateFault::CodeLengthRepeat);
            return false;
        }
        const uint8_t length = symbol == kRepeatPrevious ? lengths[i - 1] : uint8_t{0};
        std::ranges::fill(lengths.subspan(i, count), length);
        i += count;
    }
    return true;
}

void InflateDecoder::DecodeCompressed(InflateOutput& output) {
    // First what the output had no room for the last time.
    CopyMatch(output);
    BadSymbol bad;
    SymbolRun run = DecodeFast(reader_, output, codes_, bad);
    if (run == SymbolRun::NearAnEnd) {
        run = DecodeCarefully(output, bad);
    }
    switch (run) {
        case SymbolRun::EndOfBlock:
            stage_ = Stage::BlockHeader;
            break;
        case SymbolRun::BadLiteral:
            return Fail(InflateFault::BadLiteral, EntryValue(bad.entry), bad.entry);
        case SymbolRun::BadDistance:
            return Fail(InflateFault::BadDistance, bad.distance, bad.entry);
        case SymbolRun::InputEnd:
            return Fail(InflateFault::InputEnd);
        default:
            break;
    }
}

// One symbol after the other, with every bit and every byte checked. A match stays in the members
// until it is copied: when the output is full before that, the next call goes on with it.
SymbolRun InflateDecoder::DecodeCarefully(InflateOutput& output, BadSymbol& bad) {
    while (output.next != output.end) {
        uint32_t entry;
        if (!NextEntry(reader_, codes_.literals, entry)) {
            return SymbolRun::InputEnd;
        }
        if ((entry & kEntryExceptional) != 0) {
            if ((entry & kEntryEndOfBlock) == 0) {
                bad = {entry};
                return SymbolRun::BadLiteral;
            }
            reader_.Take(EntryBits(entry));
            return SymbolRun::EndOfBlock;
        }
        const uint32_t value = TakeValue(reader_, entry);
        if ((entry & kEntryLiteral) != 0) {
            *output.next++ = static_cast<uint8_t>(value);
            continue;
        }
        if (!NextEntry(reader_, codes_.distances, entry)) {
            return SymbolRun::InputEnd;
        }
        if ((entry & kEntryExceptional) != 0) {
            bad = {entry};
            return SymbolRun::BadDistance;
        }
        matchLeft_ = value;
        matchDistance_ = TakeValue(reader_, entry);
        if (matchDistance_ > static_cast<size_t>(output.next - output.begin)) {
            bad = {entry, matchDistance_};
            return SymbolRun::BadDistance;
        }
        CopyMatch(output);
    }
    return SymbolRun::OutputFull;
}

// Byte by byte, since a match may overlap what it copies: a distance of 1 repeats one byte.
void InflateDecoder::CopyMatch(InflateOutput& output) {
    for (; matchLeft_ > 0 && output.next != output.end; --matchLeft_, ++output.next) {
        *output.next = *(output.next - matchDistance_);
    }
}

}  // namespace imgbasic
