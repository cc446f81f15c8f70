#pragma once

namespace imgbasic {

/// Whether a byte begins a double-byte character of Shift-JIS (code page 932).
constexpr bool IsLeadByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

}  // namespace imgbasic
