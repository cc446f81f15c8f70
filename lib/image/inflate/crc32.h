#pragma once

#include <cstdint>
#include <span>

namespace imgbasic {

/// Carries the CRC-32 of ISO 3309 (as in gzip and PNG) on over `bytes`. `crc` is the checksum of
/// what came before, 0 at the start. Eight bytes at a time (Kounavis and Berry, 2005).
uint32_t UpdateCrc32(uint32_t crc, std::span<const uint8_t> bytes);

}  // namespace imgbasic
