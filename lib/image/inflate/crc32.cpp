#include "lib/image/inflate/crc32.h"

#include <array>

namespace imgbasic {
namespace {

constexpr uint32_t kReversedPolynomial = 0xEDB88320;

using Tables = std::array<std::array<uint32_t, 256>, 8>;

// Table k takes a byte through k + 1 byte positions of the register.
constexpr Tables MakeTables() {
    Tables tables{};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? kReversedPolynomial : 0);
        }
        tables[0][byte] = crc;
    }
    for (size_t k = 1; k < tables.size(); ++k) {
        for (size_t byte = 0; byte < 256; ++byte) {
            const uint32_t before = tables[k - 1][byte];
            tables[k][byte] = (before >> 8) ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}

constexpr Tables kTables = MakeTables();

}  // namespace

uint32_t UpdateCrc32(uint32_t crc, std::span<const uint8_t> bytes) {
    crc = ~crc;
    const uint8_t* next = bytes.data();
    size_t left = bytes.size();
    for (; left >= 8; left -= 8, next += 8) {
        crc = kTables[7][next[0] ^ (crc & 0xFF)] ^ kTables[6][next[1] ^ ((crc >> 8) & 0xFF)] ^
              kTables[5][next[2] ^ ((crc >> 16) & 0xFF)] ^ kTables[4][next[3] ^ (crc >> 24)] ^
              kTables[3][next[4]] ^ kTables[2][next[5]] ^ kTables[1][next[6]] ^ kTables[0][next[7]];
    }
    for (; left > 0; --left) {
        crc = (crc >> 8) ^ kTables[0][(crc ^ *next++) & 0xFF];
    }
    return ~crc;
}

}  // namespace imgbasic
