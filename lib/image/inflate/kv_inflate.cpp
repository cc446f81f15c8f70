#include "lib/image/inflate/kv_inflate.h"

#include <algorithm>
#include <array>
#include <utility>

#include "lib/base/log.h"
#include "lib/image/inflate/crc32.h"

namespace imgbasic {
namespace {

constexpr uint32_t kSignature = 0xFA41;
constexpr uint32_t kFlagCrc = 1;
constexpr uint32_t kFlagPassword = 2;
constexpr uint32_t kFlagsEnd = 8;

// How far back matches reach, and as much again to inflate into before the window is moved:
//
//      | history: what matches may refer to | inflated now ...   | room |
//      0                                                 windowUsed     kWindowSize
//
// When it is full, its last kHistorySize bytes move to the front.
constexpr size_t kHistorySize = size_t{32} << 10;
constexpr size_t kWindowSize = 2 * kHistorySize;

uint32_t Number16(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8;
}

uint32_t Number32(const uint8_t* bytes) {
    return Number16(bytes) | Number16(bytes + 2) << 16;
}

void LogNoMemory(const KVString& fileName) {
    Log("[KVInflate]ワークが作成できない - %s\n", fileName.c_str());
}

void LogFault(const InflateFault& fault, const KVString& fileName) {
    const char* const name = fileName.c_str();
    const char* const dash = fileName.empty() ? "" : " - ";
    const auto plain = [&](const char* text) { Log("[KVInflate]%s%s%s\n", text, dash, name); };
    switch (fault.kind) {
        case InflateFault::None:
            return Log("[KVInflate]データが足りない - %s\n", name);
        case InflateFault::InputEnd:
            return plain("ファイル読み込みエラー");
        case InflateFault::BlockType:
            return plain("不正なブロックタイプ");
        case InflateFault::StoredLength:
            return Log("[KVInflate]ブロックサイズが異常(len:0x%04x, xlen:0x%04x)%s%s\n",
                       fault.first, fault.second, dash, name);
        case InflateFault::TooManyCodes:
            return Log("[KVInflate]ハフマンテーブルがバッファに収まらない\n");
        case InflateFault::CodeLengthCode:
            return plain("ハフマンコードが異常");
        case InflateFault::CodeLengthRepeat:
            return plain("ビット長のリピート値が異常");
        case InflateFault::LiteralTable:
            return plain("長さのハフマンテーブルが異常");
        case InflateFault::DistanceTable:
            return plain("距離のハフマンテーブルが異常");
        case InflateFault::BadLiteral:
            return Log("[KVInflate]不明なコード(code:%d op:0x%08x)%s%s\n",
                       static_cast<int>(fault.first), fault.second, dash, name);
        case InflateFault::BadDistance:
            return Log("[KVInflate]不明な距離(dist:%d op:0x%08x)%s%s\n",
                       static_cast<int>(fault.first), fault.second, dash, name);
    }
}

}  // namespace

bool KVInflate::Open(KVMemoryFile* file) {
    if (file == nullptr) {
        Log("[KVInflate]ファイルが指定されてない - %s\n", "");
        return false;
    }
    if (stream_) {
        Log("[KVInflate]他のファイルを操作中 - %s\n", file->Name().c_str());
        return false;
    }
    const auto unreadable = [file] {
        LogFault({InflateFault::InputEnd}, file->Name());
        return false;
    };
    std::array<uint8_t, 12> header;
    if (file->Read(header) != header.size() || Number16(&header[0]) != kSignature) {
        return unreadable();
    }
    const uint32_t flags = Number16(&header[2]);
    if (flags >= kFlagsEnd) {
        return unreadable();
    }
    if ((flags & kFlagPassword) != 0) {
        Log("[KVInflate]パスワードが必要 - %s\n", file->Name().c_str());
        return false;
    }
    std::optional<uint32_t> crc;
    if ((flags & kFlagCrc) != 0) {
        std::array<uint8_t, 4> field;
        if (file->Read(field) != field.size()) {
            return unreadable();
        }
        crc = Number32(field.data());
    }
    stream_.emplace(Stream{file, Number32(&header[4]), crc, InflateDecoder(file->Rest())});
    return true;
}

size_t KVInflate::Read(std::span<uint8_t> destination) {
    if (!stream_) {
        Log("[KVInflate]ファイルが指定されてない - %s\n", "");
        return 0;
    }
    Stream& stream = *stream_;
    if (stream.failed) {
        return 0;
    }
    const size_t wanted = std::min<size_t>(destination.size(), stream.size - stream.position);
    if (wanted == 0) {
        return 0;
    }
    const std::span<uint8_t> wantedPart = destination.first(wanted);
    size_t count;
    if (wanted == stream.size) {
        // All at once: what has been inflated stays where matches can refer to it.
        InflateOutput output{wantedPart.data(), wantedPart.data(), wantedPart.data() + wanted};
        stream.decoder.Decode(output);
        count = static_cast<size_t>(output.next - output.begin);
    } else {
        count = ReadPiece(stream, wantedPart);
    }
    if (stream.announcedCrc) {
        stream.crc = UpdateCrc32(stream.crc, wantedPart.first(count));
    }
    stream.position += static_cast<uint32_t>(count);
    if (count < wanted && !stream.failed) {
        stream.failed = true;
        LogFault(stream.decoder.Fault(), stream.file->Name());
    }
    return count;
}

size_t KVInflate::ReadPiece(Stream& stream, std::span<uint8_t> destination) {
    if (stream.window == nullptr) {
        stream.window = AllocateZeroed(kWindowSize);
        if (stream.window == nullptr) {
            LogNoMemory(stream.file->Name());
            stream.failed = true;
            return 0;
        }
    }
    uint8_t* const window = stream.window.get();
    size_t done = 0;
    while (done < destination.size()) {
        if (stream.windowUsed == kWindowSize) {
            std::copy_n(window + kWindowSize - kHistorySize, kHistorySize, window);
            stream.windowUsed = kHistorySize;
        }
        uint8_t* const start = window + stream.windowUsed;
        const size_t wanted = std::min(destination.size() - done, kWindowSize - stream.windowUsed);
        InflateOutput output{window, start, start + wanted};
        stream.decoder.Decode(output);
        const auto count = static_cast<size_t>(output.next - start);
        std::copy_n(start, count, destination.data() + done);
        stream.windowUsed += count;
        done += count;
        if (count < wanted) {
            break;
        }
    }
    return done;
}

bool KVInflate::Close() {
    if (!stream_) {
        Log("[KVInflate]ファイルが指定されてない - %s\n", "");
        return false;
    }
    bool good = !stream_->failed;
    if (good && stream_->position == stream_->size && stream_->announcedCrc &&
        *stream_->announcedCrc != stream_->crc) {
        Log("[KVInflate]CRCエラー - %s\n", stream_->file->Name().c_str());
        good = false;
    }
    stream_.reset();
    return good;
}

InflatedBlock InflateMemory(std::span<const uint8_t> compressed, uint64_t least, uint64_t most) {
    KVMemoryFile file(compressed);
    KVInflate stream;
    if (!stream.Open(&file)) {
        return {};
    }
    const uint32_t size = stream.UncompressedSize();
    if (size < least || size > most) {
        LogFault({InflateFault::InputEnd}, file.Name());
        return {};
    }
    ZeroedBlock block = AllocateZeroed(size);
    if (block == nullptr && size > 0) {
        LogNoMemory(file.Name());
        return {};
    }
    const bool isWhole = stream.Read({block.get(), size}) == size;
    return stream.Close() && isWhole ? InflatedBlock{std::move(block), size} : InflatedBlock{};
}

}  // namespace imgbasic
