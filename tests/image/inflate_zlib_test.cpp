#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/inflate_check.h"
#include "lib/base/log.h"
#include "lib/image/kv_inflate.h"
#include "tests/image/guarded_bytes.h"
#include "tests/image/inflate_streams.h"

namespace imgbasic {
namespace {

using Random = std::mt19937;

// Drawn from 0 to most, small numbers as often as large ones.
size_t AnySize(Random& random, size_t most) {
    return random() % (random() % most + 1);
}

Bytes PhotoLike(Random& random, size_t size) {
    Bytes bytes(size);
    for (size_t i = 4; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i % 4 == 3 ? 255 : bytes[i - 4] + random() % 5);
    }
    return bytes;
}

Bytes Flat(Random& random, size_t size) {
    return Bytes(size, static_cast<uint8_t>(random()));
}

Bytes Noise(Random& random, size_t size) {
    Bytes bytes(size);
    std::ranges::generate(bytes, [&] { return static_cast<uint8_t>(random()); });
    return bytes;
}

// Repeats of 1 to 40 bytes: matches at every short distance, and of all lengths.
Bytes Runs(Random& random, size_t size) {
    Bytes bytes;
    while (bytes.size() < size) {
        const Bytes pattern = Noise(random, random() % 40 + 1);
        const size_t end = std::min(size, bytes.size() + random() % 300 + 1);
        for (size_t i = 0; bytes.size() < end; ++i) {
            bytes.push_back(pattern[i % pattern.size()]);
        }
    }
    return bytes;
}

// Noise that comes again up to 32 KiB later, where matches reach farthest.
Bytes FarRepeats(Random& random, size_t size) {
    const Bytes period = Noise(random, 32768 - random() % 3);
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = random() % 200 == 0 ? uint8_t{0} : period[i % period.size()];
    }
    return bytes;
}

Bytes DeflateByZlib(Bytes bytes, int level, int strategy) {
    z_stream zlib{};
    deflateInit2(&zlib, level, Z_DEFLATED, -MAX_WBITS, 8, strategy);
    Bytes data(deflateBound(&zlib, static_cast<uLong>(bytes.size())));
    zlib.next_in = bytes.data();
    zlib.avail_in = static_cast<uInt>(bytes.size());
    zlib.next_out = data.data();
    zlib.avail_out = static_cast<uInt>(data.size());
    EXPECT_EQ(deflate(&zlib, Z_FINISH), Z_STREAM_END);
    data.resize(zlib.total_out);
    deflateEnd(&zlib);
    return data;
}

// What KVInflate makes of a stream when it is read in pieces of up to `most` bytes, all at once
// when `most` is 0; nothing when it reports a failure.
Bytes Inflated(const Bytes& stream, Random& random, size_t most) {
    KVMemoryFile file(stream);
    KVInflate inflate;
    EXPECT_TRUE(inflate.Open(&file));
    Bytes bytes(inflate.UncompressedSize());
    for (std::span<uint8_t> rest = bytes; !rest.empty();) {
        const size_t wanted =
            most == 0 ? rest.size() : std::min(rest.size(), size_t{random() % most + 1});
        EXPECT_EQ(inflate.Read(rest.first(wanted)), wanted);
        rest = rest.subspan(wanted);
    }
    return inflate.Close() ? bytes : Bytes{};
}

TEST(InflateZlib, ReadsWhatZlibWritesAtAllLevelsAndStrategies) {
    constexpr int kStrategies[] = {Z_DEFAULT_STRATEGY, Z_FILTERED, Z_HUFFMAN_ONLY, Z_RLE, Z_FIXED};
    constexpr size_t kMostBytes[] = {0, 40, 5000, 90000};
    for (const auto generate : {PhotoLike, Flat, Noise, Runs, FarRepeats}) {
        for (unsigned seed = 0; seed < 600; ++seed) {
            Random random(seed);
            const size_t most = kMostBytes[seed % 4];
            const Bytes bytes = generate(random, AnySize(random, most + 2));
            const int level = static_cast<int>(random() % 10);
            const int strategy = kStrategies[random() % std::size(kStrategies)];
            const Bytes data = DeflateByZlib(bytes, level, strategy);
            const uLong crc = crc32(0, bytes.data(), static_cast<uInt>(bytes.size()));
            const Bytes stream = PixelStream(bytes.size(), data, 1, {static_cast<uint32_t>(crc)});
            ASSERT_EQ(Inflated(stream, random, 0), bytes) << "seed " << seed;
            ASSERT_EQ(Inflated(stream, random, AnySize(random, most + 2) + 1), bytes)
                << "seed " << seed;
        }
    }
}

// Unmapped memory on both sides of the stream and of the result; streams of every length.
TEST(InflateZlib, TouchesNothingOutsideItsBuffers) {
    Random random(1);
    const Bytes bytes = Runs(random, 900);
    for (const int strategy : {Z_DEFAULT_STRATEGY, Z_FIXED}) {
        const Bytes whole = PixelStream(bytes.size(), DeflateByZlib(bytes, 9, strategy));
        for (size_t length = 0; length <= whole.size(); ++length) {
            for (const auto side : {GuardedBytes::Front, GuardedBytes::Back}) {
                GuardedBytes stream(length, side);
                GuardedBytes result(bytes.size(), side);
                std::copy_n(whole.begin(), length, stream.Span().begin());
                KVMemoryFile file(stream.Span());
                KVInflate inflate;
                const LogCapture quiet([](std::string_view) {});
                ASSERT_EQ(inflate.Open(&file), length >= 12);
                const size_t count = inflate.Read(result.Span());
                ASSERT_TRUE(length != whole.size() || count == bytes.size());
                ASSERT_TRUE(std::equal(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(count),
                                       result.Span().begin()));
            }
        }
    }
}

TEST(InflateZlib, AgreesOnTheFuzzersCorpus) {
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(IMGBASIC_FUZZ_CORPUS "/inflate")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const Bytes data{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(CheckInflate(data), "") << entry.path();
        ++files;
    }
    EXPECT_GT(files, 20U);
}

}  // namespace
}  // namespace imgbasic
