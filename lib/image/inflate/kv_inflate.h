#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "lib/base/zeroed_block.h"
#include "lib/image/inflate/decode.h"
#include "lib/image/inflate/kv_memory_file.h"

namespace imgbasic {

/// Reads a compressed pixel stream, front to back. All numbers are little-endian:
///
///   offset 0  16 bits  signature 0xFA41
///          2  16 bits  flags, below 8: bit 0 a CRC-32 of the uncompressed data follows the
///                      header, bit 1 a password check value does (before the CRC) and the data
///                      is encrypted, bit 2 is reserved
///          4  32 bits  size of the uncompressed data
///          8  32 bits  reserved
///         12           the fields that the flags announce, then raw DEFLATE data
///
/// Every failure is one log line, "[KVInflate]" and:
///
///   ワークが作成できない - %s          no memory for the window of piecewise reading, or for all
///                                      the data of a stream in memory
///   他のファイルを操作中 - %s          Open while a stream is open
///   ファイルが指定されてない - %s      Open without a file; Read or Close without a stream
///   パスワードが必要 - %s              encrypted data, for which there never is a password
///   CRCエラー - %s                     all was read and its checksum is not the announced one
///   データが足りない - %s              the DEFLATE data ends before the announced size
///   ファイル読み込みエラー             no such header, a size that the reader does not believe, or
///                                      the input ends before the DEFLATE data
///   ブロックサイズが異常(len:0x%04x, xlen:0x%04x)   InflateFault::StoredLength
///   ハフマンコードが異常               InflateFault::CodeLengthCode
///   ビット長のリピート値が異常         InflateFault::CodeLengthRepeat
///   長さのハフマンテーブルが異常       InflateFault::LiteralTable
///   距離のハフマンテーブルが異常       InflateFault::DistanceTable
///   不正なブロックタイプ               InflateFault::BlockType
///   不明なコード(code:%d op:0x%08x)    InflateFault::BadLiteral
///   不明な距離(dist:%d op:0x%08x)      InflateFault::BadDistance
///   ハフマンテーブルがバッファに収まらない   InflateFault::TooManyCodes
///
/// %s is the file's name. The lines from ファイル読み込みエラー on end in " - %s" too when the
/// file has a name, all but the last, which never does.
class KVInflate {
  public:
    KVInflate() = default;
    KVInflate(const KVInflate&) = delete;
    KVInflate& operator=(const KVInflate&) = delete;

    /// Reads and checks the header. `file`, borrowed until Close, stands at the stream's start.
    /// False, and no stream open that was not before, on failure.
    bool Open(KVMemoryFile* file);

    /// The size that the open stream's header announces, in bytes; 0 without one.
    uint32_t UncompressedSize() const { return stream_ ? stream_->size : 0; }

    /// Inflates the next bytes into `destination` and returns their number: less than asked for
    /// where the announced size ends, which is no failure, or where the data fails. What lies
    /// behind them in `destination` may have been written to. No input is decoded beyond what
    /// these bytes take.
    size_t Read(std::span<uint8_t> destination);

    /// Ends the stream. False when reading failed, or when everything was read and the checksum
    /// that the stream may have differs.
    bool Close();

  private:
    struct Stream {
        KVMemoryFile* file;
        uint32_t size;
        std::optional<uint32_t> announcedCrc;
        InflateDecoder decoder;
        uint32_t position = 0;
        uint32_t crc = 0;
        bool failed = false;
        // For reading piece by piece: what was inflated last, and behind it room for more.
        ZeroedBlock window = nullptr;
        size_t windowUsed = 0;
    };

    static size_t ReadPiece(Stream& stream, std::span<uint8_t> destination);

    std::optional<Stream> stream_;
};

/// A whole stream's uncompressed data.
struct InflatedBlock {
    ZeroedBlock bytes;  ///< null on failure, and for no data
    int64_t size = -1;  ///< in bytes; -1 on failure
};

/// Inflates the stream that `compressed` holds. A stream that announces less than `least` or more
/// than `most` bytes fails before anything is allocated for it. Failures are logged as KVInflate's.
InflatedBlock InflateMemory(std::span<const uint8_t> compressed, uint64_t least, uint64_t most);

}  // namespace imgbasic
