#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace imgbasic {

/// Reads `data` as a compressed pixel stream, once whole and once in pieces, and compares with
/// what zlib makes of its DEFLATE data: the verdict, the bytes before a fault and one log line
/// for every failure. Returns what differs, empty when nothing does.
///
/// So that arbitrary bytes make useful streams, the signature is put right, the size is taken
/// modulo 128 KiB, and the reserved header field says how large the pieces are.
std::string CheckInflate(std::span<const uint8_t> data);

}  // namespace imgbasic
