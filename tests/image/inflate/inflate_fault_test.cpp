#include <gtest/gtest.h>

#include <string>

#include "lib/base/log.h"
#include "lib/image/inflate/kv_inflate.h"
#include "tests/image/inflate/inflate_streams.h"

namespace imgbasic {
namespace {

/// What a log line ends in when the file is called "a.kv" and when it has no name.
enum class Suffix { Always, IfNamed, Never };

std::string Line(const char* text, Suffix suffix, const std::string& name) {
    const bool named = suffix == Suffix::Always || (suffix == Suffix::IfNamed && !name.empty());
    return std::string("[KVInflate]") + text + (named ? " - " + name : "") + "\n";
}

/// Captures log lines without their time stamp, "YYYY/MM/DD HH:MM:SS : ".
struct LogLines {
    std::string text;
    LogCapture capture{[this](std::string_view line) { text += line.substr(22); }};
};

BitWriter LastBlock(uint32_t type) {
    return BitWriter().Number(1, 1).Number(type, 2);
}

// A dynamic block with 257 + literals and 1 + distances codes, up to the code-length code, whose
// lengths come in the order 16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15.
BitWriter Dynamic(uint32_t literals, uint32_t distances, std::string_view lengths) {
    BitWriter writer = LastBlock(2);
    writer.Number(literals, 5).Number(distances, 5);
    writer.Number(static_cast<uint32_t>(lengths.size()) - 4, 4);
    for (const char length : lengths) {
        writer.Number(static_cast<uint32_t>(length - '0'), 3);
    }
    return writer;
}

// Code lengths are written in 1 bit: 0 for the length 1, 1 for a run of zeros. The first 138
// literals and then `more` have no code; 258 codes follow in all, and `distances` more.
BitWriter ZeroRuns(uint32_t distances, uint32_t more) {
    BitWriter writer = Dynamic(0, distances, "001000000000000001");
    return writer.Code("1").Number(138 - 11, 7).Code("1").Number(more - 11, 7);
}

// Up to the symbols: end of block -> 0, and as many distances with 1-bit codes as there are zeros.
BitWriter OnlyEndOfBlock(std::string_view distances) {
    return ZeroRuns(static_cast<uint32_t>(distances.size()) - 1, 118).Code("0").Code(distances);
}

// Literals 0 -> 0 and 257 (length 3) -> 11, end of block -> 10; no distance has a code. Code
// lengths are written 0 -> 0, 1 -> 10, 2 -> 110, run of zeros -> 111.
BitWriter NoDistances() {
    BitWriter writer = Dynamic(1, 0, "003100000000000302");
    writer.Code("10111").Number(138 - 11, 7).Code("111").Number(117 - 11, 7);
    return writer.Code("1101100").Code("0").Code("11");
}

// Code lengths are written 0 -> 0, repeat -> 1.
BitWriter RepeatOfNothing() {
    return Dynamic(0, 0, "1001").Code("1").Number(0, 2);
}

// Fixed codes: 'A' 01110001, length 3 0000001, end of block 0000000, invalid symbol 286 11000110,
// distance 1 00000, distance 2 00001, invalid distance symbol 30 11110.
BitWriter FixedA() {
    return LastBlock(1).Code("01110001");
}

struct FaultCase {
    const char* name;
    Bytes stream;
    size_t goodBytes;
    const char* line;
    Suffix suffix = Suffix::IfNamed;
};

Bytes Stream(const Bytes& data) {
    return PixelStream(1000, data);
}

// Announces one byte, which is there, and these flags with their fields.
Bytes FlaggedA(uint32_t flags, const std::vector<uint32_t>& fields) {
    return PixelStream(1, FixedA().Code("0000000"), flags, fields);
}

const FaultCase kFaultCases[] = {
    {"other signature", Bytes(12), 0, "ファイル読み込みエラー"},
    {"flags of 8", FlaggedA(8, {}), 0, "ファイル読み込みエラー"},
    {"password", FlaggedA(3, {1, 2}), 0, "パスワードが必要", Suffix::Always},
    {"checksum", FlaggedA(5, {0xD3D99E8A}), 1, "CRCエラー", Suffix::Always},
    {"data ends early", Stream(FixedA().Code("0000000")), 1, "データが足りない", Suffix::Always},
    {"reserved block type", Stream(LastBlock(3)), 0, "不正なブロックタイプ"},
    {"stored length", Stream(LastBlock(0).AlignToByte().Number(5, 16).Number(0xFFF0, 16)), 0,
     "ブロックサイズが異常(len:0x0005, xlen:0xfff0)"},
    {"287 literal codes", Stream(Dynamic(30, 0, "0000")), 0,
     "ハフマンテーブルがバッファに収まらない", Suffix::Never},
    {"31 distance codes", Stream(Dynamic(0, 30, "0000")), 0,
     "ハフマンテーブルがバッファに収まらない", Suffix::Never},
    {"incomplete length code", Stream(Dynamic(0, 0, "1000")), 0, "ハフマンコードが異常"},
    {"over-subscribed length code", Stream(Dynamic(0, 0, "1110")), 0, "ハフマンコードが異常"},
    {"repeat of nothing", Stream(RepeatOfNothing()), 0, "ビット長のリピート値が異常"},
    {"run beyond the last code", Stream(ZeroRuns(0, 138)), 0, "ビット長のリピート値が異常"},
    {"over-subscribed literals", Stream(ZeroRuns(0, 115).Code("00000")), 0,
     "長さのハフマンテーブルが異常"},
    {"no end of block", Stream(ZeroRuns(0, 120)), 0, "長さのハフマンテーブルが異常"},
    {"over-subscribed distances", Stream(OnlyEndOfBlock("000")), 0, "距離のハフマンテーブルが異常"},
    {"literal symbol 286", Stream(FixedA().Code("11000110")), 1,
     "不明なコード(code:286 op:0x011e8808)"},
    {"no literal's bits", Stream(OnlyEndOfBlock("0").Code("1")), 0,
     "不明なコード(code:0 op:0x00008101)"},
    {"distance symbol 30", Stream(FixedA().Code("000000111110")), 1,
     "不明な距離(dist:0 op:0x001e8505)"},
    {"distance 2 after 1 byte", Stream(FixedA().Code("000000100001")), 1,
     "不明な距離(dist:2 op:0x00020505)"},
    {"no distance code", Stream(NoDistances().Code("0")), 1, "不明な距離(dist:0 op:0x00008101)"},
};

// Behind some data the decoder has no room for its fast loop, behind other it has.
TEST(InflateFault, LogsItsLineAndKeepsWhatCameBefore) {
    for (const FaultCase& fault : kFaultCases) {
        for (const int variant : {0, 1, 2, 3}) {
            SCOPED_TRACE(fault.name + std::string(", variant ") + std::to_string(variant));
            const std::string name = variant % 2 == 0 ? "" : "a.kv";
            Bytes stream = fault.stream;
            stream.resize(stream.size() + (variant < 2 ? 0 : 100));
            KVMemoryFile file(stream, name);
            KVInflate inflate;
            Bytes bytes(1000);
            const LogLines log;
            if (inflate.Open(&file)) {
                EXPECT_EQ(inflate.Read(bytes), fault.goodBytes);
                EXPECT_EQ(inflate.Read(bytes), 0U);
                EXPECT_FALSE(inflate.Close());
            }
            EXPECT_EQ(log.text, Line(fault.line, fault.suffix, name));
        }
    }
}

TEST(InflateFault, AChecksumIsComparedOnlyWhenEverythingWasRead) {
    const Bytes stream = PixelStream(2, StoredBlock(Bytes{1, 2}), 1, {0xBADBADBA});
    for (const size_t size : {0U, 1U, 2U}) {
        KVMemoryFile file(stream, "a.kv");
        KVInflate inflate;
        Bytes bytes(size);
        const LogLines log;
        EXPECT_TRUE(inflate.Open(&file));
        EXPECT_EQ(inflate.Read(bytes), size);
        EXPECT_EQ(inflate.Close(), size < 2);
        EXPECT_EQ(log.text, size < 2 ? "" : Line("CRCエラー", Suffix::Always, "a.kv"));
    }
}

TEST(InflateFault, CallsThatDoNotFitTheState) {
    const Bytes stream = PixelStream(2, StoredBlock(Bytes{1, 2}));
    KVMemoryFile file(stream, "a.kv");
    KVMemoryFile other(stream, "b.kv");
    const std::string noFile = Line("ファイルが指定されてない", Suffix::Always, "");
    KVInflate inflate;
    Bytes byte(1);
    const LogLines log;
    EXPECT_FALSE(inflate.Open(nullptr));
    EXPECT_EQ(inflate.Read(byte), 0U);
    EXPECT_FALSE(inflate.Close());
    EXPECT_TRUE(inflate.Open(&file));
    EXPECT_FALSE(inflate.Open(&other));
    {
        const ScopedBlockLimit noMemory(0);
        EXPECT_EQ(inflate.Read(byte), 0U);
    }
    EXPECT_FALSE(inflate.Close());
    EXPECT_TRUE(inflate.Open(&other));
    EXPECT_EQ(inflate.Read(byte), 1U);
    EXPECT_TRUE(inflate.Close());
    EXPECT_EQ(log.text, noFile + noFile + noFile +
                            Line("他のファイルを操作中", Suffix::Always, "b.kv") +
                            Line("ワークが作成できない", Suffix::Always, "a.kv"));
}

}  // namespace
}  // namespace imgbasic
