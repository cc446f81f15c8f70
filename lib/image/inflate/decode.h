#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "lib/image/inflate/bit_io.h"
#include "lib/image/inflate/code_tables.h"
#include "lib/image/inflate/fast_decode.h"

namespace imgbasic {

/// What is wrong with a DEFLATE stream, with the two values that describe it where there are any.
struct InflateFault {
    enum Kind {
        None,
        InputEnd,          ///< the input ends before the stream does
        BlockType,         ///< the reserved block type
        StoredLength,      ///< a stored block's length and complement disagree: the two
        TooManyCodes,      ///< a dynamic block declares more codes than the alphabets have
        CodeLengthCode,    ///< the code of the code lengths is over-subscribed or incomplete
        CodeLengthRepeat,  ///< a code length is repeated that is not there or beyond the last one
        LiteralTable,      ///< the literal code is no complete code or lacks the end of the block
        DistanceTable,     ///< the distance code is no complete code
        BadLiteral,        ///< no valid literal or length: symbol (0 if none), table entry
        BadDistance,       ///< no valid distance or one before the start: distance, table entry
    };
    Kind kind = None;
    uint32_t first = 0;
    uint32_t second = 0;
};

/// A decoder of raw DEFLATE data (Deutsch, RFC 1951, 1996). It accepts and rejects what zlib
/// does: codes must be complete except for a single code of 1 bit or no distance code at all,
/// and a distance may lead back to the start of the output but not before it.
///
/// It can stop before any byte of output and go on later: between calls everything is in the
/// stage, in what is left of a stored block or of a match, and in the reader.
///
///      BlockHeader --> Stored ------> BlockHeader       when all its bytes are copied
///                 \-> Compressed --> BlockHeader       at the end of the block
///                  \-> Finished                        behind the last block; from any stage,
///                                                      with a fault
///
/// A block's symbols are decoded by two loops. DecodeFast does what is far from both ends of the
/// buffers and checks them once a symbol; what it leaves is done here, with a check before every
/// bit and every byte.
class InflateDecoder {
  public:
    /// Borrows the bytes.
    explicit InflateDecoder(std::span<const uint8_t> input) : reader_(input) {}

    /// Goes on decoding until `output` is full, the stream ends or it turns out to be damaged;
    /// `output.next` is behind the last good byte then. The 32 KiB before `output.next`, or as
    /// much as there is, must be what was decoded last. Bytes between `output.next` and
    /// `output.end` may have been written to. After the end or a fault nothing more comes.
    void Decode(InflateOutput& output);

    const InflateFault& Fault() const { return fault_; }

  private:
    enum class Stage { BlockHeader, Stored, Compressed, Finished };

    void Fail(InflateFault::Kind kind, uint32_t first = 0, uint32_t second = 0);
    void ReadBlockHeader();
    void ReadStoredHeader();
    void ReadDynamicHeader();
    bool ReadCodeLengths(const HuffmanTable& table, std::span<uint8_t> lengths);
    void CopyStored(InflateOutput& output);
    void DecodeCompressed(InflateOutput& output);
    SymbolRun DecodeCarefully(InflateOutput& output, BadSymbol& bad);
    void CopyMatch(InflateOutput& output);

    BitReader reader_;
    Stage stage_ = Stage::BlockHeader;
    bool isLastBlock_ = false;
    uint32_t storedLeft_ = 0;
    // The rest of a match that the output had no room for.
    uint32_t matchLeft_ = 0;
    uint32_t matchDistance_ = 0;
    InflateFault fault_;
    BlockCodes codes_;
    std::array<uint32_t, kLiteralTableSize> literalStorage_;
    std::array<uint32_t, kDistanceTableSize> distanceStorage_;
};

}  // namespace imgbasic
