#include <zlib.h>

#include <algorithm>
#include <random>

#ifdef IMGBASIC_BENCH_LIBDEFLATE
#include <libdeflate.h>
#endif

#include "bench/test_pictures.h"
#include "host/flatten.h"
#include "host/image_file.h"
#include "lib/image/inflate/kv_inflate.h"

namespace imgbasic {
namespace {

using Bytes = std::vector<uint8_t>;

// A picture as a 32-bit bitmap holds it.
Bytes PixelBytes(const std::vector<RGBA16>& picture) {
    Bytes bytes;
    bytes.reserve(picture.size() * 4);
    for (const RGBA16 pixel : picture) {
        for (const uint16_t channel : {pixel.b, pixel.g, pixel.r, pixel.a}) {
            bytes.push_back(static_cast<uint8_t>(channel >> 8));
        }
    }
    return bytes;
}

Bytes Sample() {
    return PixelBytes(host::Flatten(host::LoadDocument(IMGBASIC_BENCH_SAMPLE)));
}

Bytes Photo() {
    return PixelBytes(OpaquePhoto(k2Megapixels));
}

// Bytes of a skewed distribution, which Huffman codes shorten but hardly a match does.
Bytes Skewed() {
    std::mt19937 random(1);
    Bytes bytes(k2Megapixels.Pixels());
    for (uint8_t& byte : bytes) {
        byte = static_cast<uint8_t>((random() & 63) * (random() & 3));
    }
    return bytes;
}

struct Deflated {
    Bytes bytes;
    Bytes data;  ///< DEFLATE data of these bytes
};

Deflated Deflate(const Bytes& bytes, int level) {
    z_stream stream{};
    deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    Bytes data(deflateBound(&stream, static_cast<uLong>(bytes.size())));
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = data.data();
    stream.avail_out = static_cast<uInt>(data.size());
    deflate(&stream, Z_FINISH);
    data.resize(stream.total_out);
    deflateEnd(&stream);
    return {bytes, data};
}

// Blocks of fixed codes that hold nothing but their end, 10 bits each: 0, 1 in 2 bits, seven zeros.
// Then a stored block, which is the last.
Deflated EmptyBlocks() {
    constexpr size_t kGroups = 1 << 18;  // of four blocks
    Bytes data;
    for (size_t i = 0; i < kGroups; ++i) {
        data.insert(data.end(), {0x02, 0x08, 0x20, 0x80, 0x00});
    }
    const Bytes bytes(1024, 7);
    data.insert(data.end(), {0x01, 0x00, 0x04, 0xFF, 0xFB});
    data.insert(data.end(), bytes.begin(), bytes.end());
    return {bytes, data};
}

void InflateByZlib(const Bytes& data, Bytes& out) {
    z_stream stream{};
    inflateInit2(&stream, -MAX_WBITS);
    stream.next_in = const_cast<Bytef*>(data.data());
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
}

#ifdef IMGBASIC_BENCH_LIBDEFLATE
void InflateByLibdeflate(const Bytes& data, Bytes& out) {
    libdeflate_decompressor* decompressor = libdeflate_alloc_decompressor();
    libdeflate_deflate_decompress(decompressor, data.data(), data.size(), out.data(), out.size(),
                                  nullptr);
    libdeflate_free_decompressor(decompressor);
}
#endif

// Reads `piece` bytes at a time, 0 for all at once.
void InflateByOurs(const Bytes& stream, Bytes& out, size_t piece) {
    KVMemoryFile file(stream);
    KVInflate inflate;
    inflate.Open(&file);
    const size_t step = piece == 0 ? out.size() : piece;
    for (size_t done = 0; done < out.size(); done += step) {
        inflate.Read(std::span(out).subspan(done, std::min(step, out.size() - done)));
    }
    inflate.Close();
}

// Reports how many times as fast as zlib and, where it is installed, libdeflate the module's own
// decoder is.
void Inflate(benchmark::State& state, const Deflated& deflated, size_t piece) {
    const Bytes& bytes = deflated.bytes;
    const Bytes& data = deflated.data;
    const auto size = static_cast<uint32_t>(bytes.size());
    Bytes stream{0x41, 0xFA, 0, 0};
    for (const uint32_t number : {size, 0U}) {
        for (int shift = 0; shift < 32; shift += 8) {
            stream.push_back(static_cast<uint8_t>(number >> shift));
        }
    }
    stream.insert(stream.end(), data.begin(), data.end());
    Bytes out(bytes.size());

    RunBesidePeers(state,
                   {
                       {"vs_zlib", [&] { InflateByZlib(data, out); }},
#ifdef IMGBASIC_BENCH_LIBDEFLATE
                       {"vs_libdeflate", [&] { InflateByLibdeflate(data, out); }},
#endif
                   },
                   [&] { InflateByOurs(stream, out, piece); });
    state.counters["deflated_percent"] =
        100.0 * static_cast<double>(data.size()) / static_cast<double>(bytes.size());
    state.SetBytesProcessed(state.iterations() * size);
    if (out != bytes) {
        state.SkipWithError("wrong bytes");
    }
}

BENCHMARK_CAPTURE(Inflate, sample_fast, Deflate(Sample(), 1), 0)->UseManualTime();
BENCHMARK_CAPTURE(Inflate, sample, Deflate(Sample(), 6), 0)->UseManualTime();
BENCHMARK_CAPTURE(Inflate, sample_pieces_of_4KiB, Deflate(Sample(), 6), 4096)->UseManualTime();
BENCHMARK_CAPTURE(Inflate, photo, Deflate(Photo(), 6), 0)->UseManualTime();
BENCHMARK_CAPTURE(Inflate, skewed, Deflate(Skewed(), 6), 0)->UseManualTime();
BENCHMARK_CAPTURE(Inflate, empty_blocks, EmptyBlocks(), 0)->UseManualTime();

}  // namespace
}  // namespace imgbasic
