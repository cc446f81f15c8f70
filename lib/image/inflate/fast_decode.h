#pragma once

#include "lib/image/inflate/bit_io.h"
#include "lib/image/inflate/code_tables.h"

namespace imgbasic {

/// The two codes of a compressed block.
struct BlockCodes {
    HuffmanTable literals;
    HuffmanTable distances;
};

/// How decoding of a block's symbols went on.
enum class SymbolRun {
    NearAnEnd,  ///< of the input or the output: goes on byte by byte
    OutputFull,
    InputEnd,
    EndOfBlock,   ///< the symbol has been consumed
    BadLiteral,   ///< no valid literal or length
    BadDistance,  ///< no valid distance, or one that leads before the start of the output
};

/// What a bad symbol is: its table entry and, when that is valid, the distance. Set only together
/// with these results; returning it with them would cost every short block a store that the load
/// behind it cannot be served from.
struct BadSymbol {
    uint32_t entry = 0;
    uint32_t distance = 0;
};

/// Decodes symbols as long as input and output have room for the longest of them, which is then
/// the only thing to check. Bytes between the new output.next and output.end may have been written
/// to. OutputFull and InputEnd do not come from here.
SymbolRun DecodeFast(BitReader& reader, InflateOutput& output, const BlockCodes& codes,
                     BadSymbol& bad);

}  // namespace imgbasic
