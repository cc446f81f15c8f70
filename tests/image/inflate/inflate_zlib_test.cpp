#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <random>

#ifndef _WIN32
#include <sys/mman.h>
#endif

#include "fuzz/checks.h"
#include "lib/base/log.h"
#include "lib/base/platform.h"
#include "lib/image/inflate/kv_inflate.h"
#include "tests/image/inflate/inflate_streams.h"

namespace imgbasic {
namespace {

using Random = std::mt19937;

// Drawn from 0 to most, small numbers as often as large ones.
size_t AnySize(Random& random, size_t most) {
    return random() % (random() % most + 1);
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

// Matches at a distance come twice as often as at half of it, so that some distances have long
// codes.
Bytes SkewedDistances(Random& random, size_t size) {
    Bytes bytes = Noise(random, std::min<size_t>(size, 32768));
    while (bytes.size() < size) {
        const size_t distance = (32000 - random() % 1000) >> std::countr_zero(random() | 1U << 14);
        for (size_t i = 0; i < 8 && bytes.size() < size; ++i) {
            bytes.push_back(bytes[bytes.size() - distance]);
        }
    }
    return bytes;
}

// Flushed half way, which writes an empty block.
Bytes DeflateByZlib(Bytes bytes, int level, int strategy) {
    z_stream zlib{};
    deflateInit2(&zlib, level, Z_DEFLATED, -MAX_WBITS, 8, strategy);
    const auto half = static_cast<uInt>(bytes.size() / 2);
    Bytes data(deflateBound(&zlib, static_cast<uLong>(bytes.size())) + 100);
    zlib.next_in = bytes.data();
    zlib.avail_in = half;
    zlib.next_out = data.data();
    zlib.avail_out = static_cast<uInt>(data.size());
    deflate(&zlib, Z_PARTIAL_FLUSH);
    zlib.avail_in = static_cast<uInt>(bytes.size()) - half;
    EXPECT_EQ(deflate(&zlib, Z_FINISH), Z_STREAM_END);
    data.resize(zlib.total_out);
    deflateEnd(&zlib);
    return data;
}

// A stream with the checksum of `bytes`, to be read in pieces of `piece` by CheckInflate.
Bytes Deflated(const Bytes& bytes, int level, int strategy, uint32_t piece) {
    const uLong crc = crc32(0, bytes.data(), static_cast<uInt>(bytes.size()));
    return PixelStream(bytes.size(), DeflateByZlib(bytes, level, strategy), 1,
                       {static_cast<uint32_t>(crc)}, piece);
}

TEST(InflateZlib, ReadsWhatZlibWritesAtAllLevelsAndStrategies) {
    constexpr int kStrategies[] = {Z_DEFAULT_STRATEGY, Z_FILTERED, Z_HUFFMAN_ONLY, Z_RLE, Z_FIXED};
    constexpr size_t kMostBytes[] = {0, 40, 5000, 90000};
    for (const auto generate : {Noise, Runs, FarRepeats, SkewedDistances}) {
        for (unsigned seed = 0; seed < 600; ++seed) {
            Random random(seed);
            const size_t most = kMostBytes[seed % 4];
            const Bytes bytes = generate(random, AnySize(random, most + 2));
            const Bytes stream = Deflated(bytes, static_cast<int>(random() % 10),
                                          kStrategies[random() % std::size(kStrategies)],
                                          static_cast<uint32_t>(AnySize(random, most + 2)));
            ASSERT_EQ(CheckInflate(stream), "") << "seed " << seed;
        }
    }
}

// A page to read and write between two that nothing can be done with; mapped for good.
std::span<uint8_t> GuardedPage() {
    constexpr size_t kPage = 4096;
#ifdef _WIN32
    auto* const pages =
        static_cast<uint8_t*>(VirtualAlloc(nullptr, 3 * kPage, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(pages + kPage, kPage, MEM_COMMIT, PAGE_READWRITE);
#else
    auto* const pages = static_cast<uint8_t*>(
        mmap(nullptr, 3 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(pages + kPage, kPage, PROT_READ | PROT_WRITE);
#endif
    return {pages + kPage, kPage};
}

TEST(InflateZlib, InputThatEndsAnywhereIsAReadErrorAndNothingOutsideIsTouched) {
    Random random(1);
    Bytes bytes = Runs(random, 900);
    std::ranges::for_each(bytes, [](uint8_t& byte) { byte &= 15; });  // worth codes of their own
    const std::span<uint8_t> input = GuardedPage();
    const std::span<uint8_t> output = GuardedPage();
    for (const auto& [level, strategy] :
         {std::pair{9, Z_DEFAULT_STRATEGY}, {9, Z_FIXED}, {0, Z_DEFAULT_STRATEGY}}) {
        const Bytes whole = Deflated(bytes, level, strategy, 0);
        for (size_t i = 0; i <= 2 * whole.size() + 1; ++i) {
            const size_t length = i / 2;
            const auto stream = i % 2 == 0 ? input.first(length) : input.last(length);
            const auto result = i % 2 == 0 ? output.first(900) : output.last(900);
            std::copy_n(whole.begin(), length, stream.begin());
            std::string log;
            const LogCapture capture([&](std::string_view line) { log += line.substr(22); });
            KVMemoryFile file(stream);
            KVInflate inflate;
            const size_t count = inflate.Open(&file) ? inflate.Read(result) : 0;
            ASSERT_TRUE(std::equal(result.begin(), result.begin() + static_cast<ptrdiff_t>(count),
                                   bytes.begin()));
            ASSERT_TRUE(length < whole.size() || count == 900);
            ASSERT_EQ(log, count == 900 ? "" : "[KVInflate]ファイル読み込みエラー\n") << length;
        }
    }
}

}  // namespace
}  // namespace imgbasic
