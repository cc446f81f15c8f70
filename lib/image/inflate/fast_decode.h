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
struct SymbolRun {
    enum Outcome {
        NearAnEnd,  ///< of the input or the output: goes on byte by byte
        OutputFull,
        InputEnd,
        EndOfBlock,   ///< the symbol has been consumed
        BadLiteral,   ///< `entry` is the table entry of no valid literal or length
        BadDistance,  ///< `entry` is that of no valid distance (`distance` 0), or the distance
                      ///< leads before the start of the output
    };
    Outcome outcome;
    uint32_t entry = 0;
    uint32_t distance = 0;
};

/// Decodes symbols as long as input and output have room for the longest of them, which is then
/// the only thing to check. Bytes between the new output.next and output.end may have been written
/// to. OutputFull and InputEnd do not come from here.
SymbolRun DecodeFast(BitReader& reader, InflateOutput& output, const BlockCodes& codes);

}  // namespace imgbasic
