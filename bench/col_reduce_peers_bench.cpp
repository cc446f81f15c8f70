#include <array>
#include <cstdlib>
#include <memory>

#include "bench/col_reduce_bench.h"
#include "bench/test_pictures.h"

#ifdef IMGBASIC_BENCH_IMAGEQUANT
#include <libimagequant.h>
#endif
#ifdef IMGBASIC_BENCH_LEPT
#include <allheaders.h>
#endif
#ifdef IMGBASIC_BENCH_MAGICKWAND
#include <wand/MagickWand.h>
#endif

// Other programs' libraries at the same task, where they are installed. Conversion from and to
// the host's pixels is not timed. Arguments: colours, whether to dither by error diffusion.
namespace imgbasic {
namespace {

using Bytes = std::vector<uint8_t>;

[[maybe_unused]] Bytes ToBytes(const std::vector<RGBA16>& picture) {
    Bytes bytes;
    for (const RGBA16& pixel : picture) {
        for (const uint16_t value : {pixel.r, pixel.g, pixel.b, pixel.a}) {
            bytes.push_back(static_cast<uint8_t>(value >> 8));
        }
    }
    return bytes;
}

/// Times `reduce(bytes, colors, dither)`, which gives the reduced picture as bytes.
template <typename Reduce>
[[maybe_unused]] void RunPeer(benchmark::State& state, BenchSize size, Reduce&& reduce) {
    const std::vector<RGBA16> picture = OpaquePhoto(size);
    const Bytes bytes = ToBytes(picture);
    Bytes reduced;
    RunBesideMemoryCopy(state, bytes.size() * 2, [&] {
        reduced = reduce(bytes, static_cast<unsigned>(state.range(0)), state.range(1) != 0);
    });
    std::vector<RGBA16> result(picture.size());
    for (size_t i = 0; i < result.size(); ++i) {
        const auto channel = [&](size_t c) {
            return static_cast<uint16_t>(reduced[4 * i + c] << 8);
        };
        result[i] = {channel(0), channel(1), channel(2), channel(3)};
    }
    ReportReduction(state, picture, result);
}

[[maybe_unused]] void PeerArgs(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgsProduct({{16, 256}, {0, 1}})->UseManualTime();
}

#ifdef IMGBASIC_BENCH_IMAGEQUANT
void ColReduceImagequant(benchmark::State& state, BenchSize size) {
    RunPeer(state, size, [&](const Bytes& bytes, unsigned colors, bool dither) {
        liq_attr* attr = liq_attr_create();
        liq_set_max_colors(attr, static_cast<int>(colors));
        liq_image* image = liq_image_create_rgba(attr, bytes.data(), size.width, size.height, 0);
        liq_result* result = nullptr;
        if (liq_image_quantize(image, attr, &result) != LIQ_OK) {
            std::abort();
        }
        liq_set_dithering_level(result, dither ? 1.0F : 0.0F);
        Bytes indices(size.Pixels());
        liq_write_remapped_image(result, image, indices.data(), indices.size());
        const liq_palette* palette = liq_get_palette(result);
        Bytes reduced;
        reduced.reserve(bytes.size());
        for (const uint8_t index : indices) {
            const liq_color& color = palette->entries[index];
            reduced.insert(reduced.end(), {color.r, color.g, color.b, color.a});
        }
        liq_result_destroy(result);
        liq_image_destroy(image);
        liq_attr_destroy(attr);
        return reduced;
    });
}

BENCHMARK_CAPTURE(ColReduceImagequant, opaque_2MP, k2Megapixels)->Apply(PeerArgs);
BENCHMARK_CAPTURE(ColReduceImagequant, opaque_16MP, k16Megapixels)->Apply(PeerArgs);
#endif

#ifdef IMGBASIC_BENCH_LEPT
std::unique_ptr<PIX, void (*)(PIX*)> LeptonicaPicture(BenchSize size) {
    PIX* picture = pixCreate(size.width, size.height, 32);
    l_uint32* word = pixGetData(picture);
    for (const RGBA16& pixel : OpaquePhoto(size)) {
        composeRGBPixel(pixel.r >> 8, pixel.g >> 8, pixel.b >> 8, word++);
    }
    return {picture, [](PIX* pix) { pixDestroy(&pix); }};
}

/// Its median cut, which knows no alpha, with its own choice of which pixels to look at.
void ColReduceLeptonica(benchmark::State& state, BenchSize size) {
    const auto picture = LeptonicaPicture(size);
    RunPeer(state, size, [&](const Bytes& bytes, unsigned colors, bool dither) {
        PIX* indexed = pixMedianCutQuantGeneral(picture.get(), dither ? 1 : 0, 8,
                                                static_cast<int>(colors), 5, 0, 0);
        if (indexed == nullptr) {
            std::abort();
        }
        const int32_t entries = pixcmapGetCount(pixGetColormap(indexed));
        std::array<std::array<int, 3>, 256> palette{};
        for (int32_t i = 0; i < entries; ++i) {
            auto& [red, green, blue] = palette[static_cast<size_t>(i)];
            pixcmapGetColor(pixGetColormap(indexed), i, &red, &green, &blue);
        }
        Bytes reduced;
        reduced.reserve(bytes.size());
        for (int32_t y = 0; y < size.height; ++y) {
            const l_uint32* row = pixGetData(indexed) + ptrdiff_t{y} * pixGetWpl(indexed);
            for (int32_t x = 0; x < size.width; ++x) {
                const auto& [red, green, blue] = palette[GET_DATA_BYTE(row, x)];
                reduced.insert(reduced.end(), {uint8_t(red), uint8_t(green), uint8_t(blue), 255});
            }
        }
        pixDestroy(&indexed);
        return reduced;
    });
}

BENCHMARK_CAPTURE(ColReduceLeptonica, opaque_2MP, k2Megapixels)->Apply(PeerArgs);
BENCHMARK_CAPTURE(ColReduceLeptonica, opaque_16MP, k16Megapixels)->Apply(PeerArgs);
#endif

#ifdef IMGBASIC_BENCH_MAGICKWAND
void ColReduceImageMagick(benchmark::State& state, BenchSize size) {
    MagickWandGenesis();
    MagickSetResourceLimit(ThreadResource, 1);
    const auto width = static_cast<size_t>(size.width);
    const auto height = static_cast<size_t>(size.height);
    RunPeer(state, size, [&](const Bytes& bytes, unsigned colors, bool dither) {
        MagickWand* wand = NewMagickWand();
        MagickConstituteImage(wand, width, height, "RGBA", CharPixel, bytes.data());
        MagickQuantizeImage(wand, colors, sRGBColorspace, 0, dither ? MagickTrue : MagickFalse,
                            MagickFalse);
        Bytes reduced(bytes.size());
        MagickExportImagePixels(wand, 0, 0, width, height, "RGBA", CharPixel, reduced.data());
        DestroyMagickWand(wand);
        return reduced;
    });
}

BENCHMARK_CAPTURE(ColReduceImageMagick, opaque_2MP, k2Megapixels)->Apply(PeerArgs);
#endif

}  // namespace
}  // namespace imgbasic
