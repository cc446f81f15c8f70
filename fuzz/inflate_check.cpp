#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/checks.h"
#include "lib/base/log.h"
#include "lib/image/inflate/kv_inflate.h"

namespace imgbasic {
namespace {

constexpr size_t kHeaderSize = 12;
constexpr uint32_t kSizeMask = (128U << 10) - 1;

using Bytes = std::vector<uint8_t>;

struct Result {
    bool opened = false;
    bool good = false;
    Bytes bytes;
};

uint32_t Number(const Bytes& stream, size_t offset) {
    uint32_t number;
    std::memcpy(&number, &stream[offset], sizeof number);
    return number;
}

Bytes InflateByZlib(std::span<const uint8_t> data, uint32_t size) {
    z_stream stream{};
    const auto bytes = std::make_unique_for_overwrite<uint8_t[]>(size + 1);
    inflateInit2(&stream, -MAX_WBITS);
    stream.next_in = const_cast<Bytef*>(data.data());
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = bytes.get();
    stream.avail_out = size;
    inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    return {bytes.get(), bytes.get() + size - stream.avail_out};
}

Result Expect(const Bytes& stream) {
    if (stream.size() < kHeaderSize) {
        return {};
    }
    const uint32_t flags = Number(stream, 0) >> 16;
    const bool hasCrc = (flags & 1) != 0;
    const size_t start = kHeaderSize + (hasCrc ? 4 : 0);
    if (flags >= 8 || (flags & 2) != 0 || stream.size() < start) {
        return {};
    }
    const uint32_t size = Number(stream, 4);
    Result result{true, true, InflateByZlib(std::span(stream).subspan(start), size)};
    const auto crc = static_cast<uint32_t>(
        crc32(0, result.bytes.data(), static_cast<uInt>(result.bytes.size())));
    result.good = result.bytes.size() == size && (!hasCrc || crc == Number(stream, kHeaderSize));
    return result;
}

// Every piece has an allocation of its own, so that the address sanitizer sees each byte too far.
Result ReadInPieces(const Bytes& stream, size_t pieceSize) {
    KVMemoryFile file(stream);
    KVInflate inflate;
    Result result;
    result.opened = inflate.Open(&file);
    if (!result.opened) {
        return result;
    }
    for (size_t left = inflate.UncompressedSize(); left > 0;) {
        const size_t wanted = std::min(left, pieceSize);
        const auto piece = std::make_unique_for_overwrite<uint8_t[]>(wanted);
        const size_t count = inflate.Read({piece.get(), wanted});
        result.bytes.insert(result.bytes.end(), piece.get(), piece.get() + count);
        left -= count;
        if (count < wanted) {
            break;
        }
    }
    result.good = inflate.Close();
    return result;
}

std::string CompareReading(const Result& expected, const Bytes& stream, size_t pieceSize) {
    int lines = 0;
    const LogCapture capture([&lines](std::string_view) { ++lines; });
    const Result actual = ReadInPieces(stream, pieceSize);
    const std::string prefix = "in pieces of " + std::to_string(pieceSize) + ": ";
    if (actual.opened != expected.opened || actual.good != expected.good) {
        return prefix + "other verdict than zlib's";
    }
    if (actual.bytes != expected.bytes) {
        return prefix + "other bytes than zlib's";
    }
    return lines == (expected.good ? 0 : 1) ? "" : prefix + std::to_string(lines) + " log lines";
}

}  // namespace

std::string CheckInflate(std::span<const uint8_t> data) {
    Bytes stream(data.begin(), data.end());
    uint32_t size = 0;
    size_t pieceSize = 1;
    if (stream.size() >= kHeaderSize) {
        stream[0] = 0x41;
        stream[1] = 0xFA;
        size = Number(stream, 4) & kSizeMask;
        std::memcpy(&stream[4], &size, sizeof size);
        pieceSize = std::max<size_t>(Number(stream, 8) & kSizeMask, size / 256 + 1);
    }
    const Result expected = Expect(stream);
    const std::string difference = CompareReading(expected, stream, kSizeMask);
    return difference.empty() && pieceSize < size ? CompareReading(expected, stream, pieceSize)
                                                  : difference;
}

}  // namespace imgbasic
