#include <gtest/gtest.h>

#include <string>

#include "lib/base/log.h"
#include "lib/image/kv_inflate.h"
#include "tests/image/inflate_streams.h"

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

// Code lengths are written in 1 bit: 0 for the length 1, 1 for a run of zeros.
BitWriter OnesAndRuns(uint32_t distances) {
    return Dynamic(0, distances, "001000000000000001");
}
BitWriter& ZeroRun(BitWriter& writer, uint32_t count) {
    return writer.Code("1").Number(count - 11, 7);
}

// Up to the symbols: literal code 256 -> 0; distance codes as `distances` says.
BitWriter OnlyEndOfBlock(std::string_view distances) {
    BitWriter writer = OnesAndRuns(static_cast<uint32_t>(distances.size()) - 1);
    ZeroRun(ZeroRun(writer, 138), 118);
    return writer.Code("0").Code(distances);
}

// Over-subscribed: the literals 253 to 256 have 1 bit each.
BitWriter FourOneBitLiterals() {
    BitWriter writer = OnesAndRuns(0);
    ZeroRun(ZeroRun(writer, 138), 115);
    return writer.Code("00000");
}

// No literal has a code, nor has the end of the block.
BitWriter NoLiterals() {
    BitWriter writer = OnesAndRuns(0);
    ZeroRun(ZeroRun(writer, 138), 120);
    return writer;
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

BitWriter RunBeyondTheLastCode() {
    BitWriter writer = OnesAndRuns(0);
    ZeroRun(ZeroRun(writer, 138), 138);
    return writer;
}

// Fixed codes: 'A' 01110001, length 3 0000001, end of block 0000000, invalid symbol 286 11000110,
// distance 1 00000, distance 2 00001, invalid distance symbol 30 11110.
BitWriter FixedA() {
    return LastBlock(1).Code("01110001");
}

struct FaultCase {
    const char* name;
    Bytes data;
    size_t goodBytes;
    const char* line;
    Suffix suffix = Suffix::IfNamed;
};

const std::vector<FaultCase>& FaultCases() {
    static const std::vector<FaultCase> cases{
        {"reserved block type", LastBlock(3), 0, "不正なブロックタイプ"},
        {"stored length", LastBlock(0).AlignToByte().Number(5, 16).Number(0xFFF0, 16), 0,
         "ブロックサイズが異常(len:0x0005, xlen:0xfff0)"},
        {"287 literal codes", Dynamic(30, 0, "0000"), 0, "ハフマンテーブルがバッファに収まらない",
         Suffix::Never},
        {"31 distance codes", Dynamic(0, 30, "0000"), 0, "ハフマンテーブルがバッファに収まらない",
         Suffix::Never},
        {"incomplete length code", Dynamic(0, 0, "1000"), 0, "ハフマンコードが異常"},
        {"over-subscribed length code", Dynamic(0, 0, "1110"), 0, "ハフマンコードが異常"},
        {"repeat of nothing", RepeatOfNothing(), 0, "ビット長のリピート値が異常"},
        {"run beyond the last code", RunBeyondTheLastCode(), 0, "ビット長のリピート値が異常"},
        {"over-subscribed literals", FourOneBitLiterals(), 0, "長さのハフマンテーブルが異常"},
        {"no end of block", NoLiterals(), 0, "長さのハフマンテーブルが異常"},
        {"over-subscribed distances", OnlyEndOfBlock("000"), 0, "距離のハフマンテーブルが異常"},
        {"literal symbol 286", FixedA().Code("11000110"), 1,
         "不明なコード(code:286 op:0x011e8808)"},
        {"no literal's bits", OnlyEndOfBlock("0").Code("1"), 0,
         "不明なコード(code:0 op:0x00008101)"},
        {"distance symbol 30", FixedA().Code("000000111110"), 1,
         "不明な距離(dist:0 op:0x001e8505)"},
        {"distance 2 after 1 byte", FixedA().Code("000000100001"), 1,
         "不明な距離(dist:2 op:0x00020505)"},
        {"no distance code", NoDistances().Code("0"), 1, "不明な距離(dist:0 op:0x00008101)"},
        {"data ends early", FixedA().Code("0000000"), 1, "データが足りない", Suffix::Always},
    };
    return cases;
}

// Behind some data the decoder has no room for its fast loop, behind other it has.
TEST(InflateFault, LogsItsLineAndKeepsWhatCameBefore) {
    for (const FaultCase& fault : FaultCases()) {
        for (const size_t padding : {0U, 100U}) {
            for (const std::string name : {"", "a.kv"}) {
                SCOPED_TRACE(fault.name + std::string(", padding ") + std::to_string(padding));
                Bytes data = fault.data;
                data.resize(data.size() + padding);
                const Bytes stream = PixelStream(1000, data);
                KVMemoryFile file(stream, name);
                KVInflate inflate;
                Bytes bytes(1000);
                const LogLines log;
                ASSERT_TRUE(inflate.Open(&file));
                EXPECT_EQ(inflate.Read(bytes), fault.goodBytes);
                EXPECT_EQ(inflate.Read(bytes), 0U);
                EXPECT_FALSE(inflate.Close());
                EXPECT_EQ(log.text, Line(fault.line, fault.suffix, name));
            }
        }
    }
}

TEST(InflateFault, EveryInputThatEndsEarlyIsAReadError) {
    // Literals A to D in a fixed block, a stored block, a dynamic one that ends at once.
    BitWriter writer;
    writer.Number(2, 3).Code("01110001011100100111001101110100").Code("0000000");
    writer.Number(0, 3).AlignToByte().Number(1, 16).Number(0xFFFE, 16).Number('E', 8);
    const size_t blocks = Bytes(writer).size();
    const Bytes last = OnlyEndOfBlock("0").Code("0");
    Bytes data = writer;
    data.insert(data.end(), last.begin(), last.end());
    for (size_t length = 0; length < data.size(); ++length) {
        const Bytes stream = PixelStream(1000, std::span(data).first(length));
        KVMemoryFile file(stream);
        KVInflate inflate;
        Bytes bytes(1000);
        const LogLines log;
        ASSERT_TRUE(inflate.Open(&file));
        EXPECT_EQ(inflate.Read(bytes) == 5, length >= blocks) << length;
        EXPECT_FALSE(inflate.Close());
        EXPECT_EQ(log.text, "[KVInflate]ファイル読み込みエラー\n") << length;
    }
}

TEST(InflateFault, HeadersThatCannotBeRead) {
    const Bytes data = FixedA().Code("0000000");
    const auto readError = Line("ファイル読み込みエラー", Suffix::IfNamed, "a.kv");
    Bytes otherSignature = PixelStream(1, data);
    otherSignature[1] = 0xFB;
    const Bytes whole = PixelStream(1, {}, 1, {0});
    const struct {
        Bytes stream;
        std::string line;
    } cases[] = {
        {otherSignature, readError},
        {PixelStream(1, data, 8), readError},
        {{}, readError},
        {Bytes(whole.begin(), whole.begin() + 11), readError},
        {Bytes(whole.begin(), whole.begin() + 15), readError},
        {PixelStream(1, data, 3, {1, 2}), Line("パスワードが必要", Suffix::Always, "a.kv")},
    };
    for (const auto& wrong : cases) {
        KVMemoryFile file(wrong.stream, "a.kv");
        KVInflate inflate;
        const LogLines log;
        EXPECT_FALSE(inflate.Open(&file));
        EXPECT_EQ(log.text, wrong.line);
    }
}

TEST(InflateFault, ChecksTheAnnouncedCrcWhenAllWasRead) {
    constexpr uint32_t kCrcOfA = 0xD3D99E8B;
    const Bytes data = FixedA().Code("0000000");
    for (const uint32_t crc : {kCrcOfA, kCrcOfA ^ 1}) {
        for (const size_t size : {0U, 1U}) {
            const Bytes stream = PixelStream(1, data, 5, {crc});
            KVMemoryFile file(stream, "a.kv");
            KVInflate inflate;
            Bytes bytes(size);
            const LogLines log;
            ASSERT_TRUE(inflate.Open(&file));
            EXPECT_EQ(inflate.Read(bytes), size);
            const bool wrong = size == 1 && crc != kCrcOfA;
            EXPECT_EQ(inflate.Close(), !wrong);
            EXPECT_EQ(log.text, wrong ? Line("CRCエラー", Suffix::Always, "a.kv") : "");
        }
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
