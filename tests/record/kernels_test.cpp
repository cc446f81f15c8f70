#include <cmath>

#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/work_bitmap.h"
#include "lib/image/resample/resample.h"
#include "tests/image/kernel_test.h"
#include "tests/record/checksum.h"
#include "tests/record/pictures.h"

// What the kernels do that no filter asks them for.

namespace imgbasic {
namespace {

class KernelRecord : public KernelTest {};

/// One direction of a rectangle: the whole image, or a fraction inside, across or beyond it, now
/// and then between whole pixels.
void AnySpan(SplitMix& random, double& from, double& length, int32_t size) {
    const int32_t kind = random.Below(6);
    from = kind < 2 ? 0 : (random.Fraction() * 1.1 - 0.3) * size;
    length = kind < 2 ? size : random.Fraction() * (kind == 2 ? 0.1 : 1.5) * size;
    if (kind == 5) {
        from = std::round(from);
        length = std::round(length);
    }
}

ResampleRect AnyRect(SplitMix& random, const Picture& picture) {
    ResampleRect rect{};
    AnySpan(random, rect.x, rect.width, picture.width);
    AnySpan(random, rect.y, rect.height, picture.height);
    return rect;
}

/// `kernel(target, source, clip)` between fractional rectangles, drawn over a picture.
template <typename Kernel>
void WalkRectangles(const std::string& group, Kernel&& kernel) {
    Checksum sum(group);
    SplitMix random(4);
    for (int32_t run = 0; run < 2000; ++run) {
        const int32_t sizes[] = {random.Below(run % 5 == 0 ? 150 : 20) + 1, random.Below(20) + 1,
                                 random.Below(run % 7 == 0 ? 150 : 20) + 1, random.Below(20) + 1};
        const Picture from = MakePicture(sizes[0], sizes[1], static_cast<size_t>(run) % kKinds);
        Picture to = MakePicture(sizes[2], sizes[3], Kind::Translucent);
        const int32_t left = random.Below(from.width + 3) - 3;
        const int32_t top = random.Below(from.height + 3) - 3;
        const PixelRect clip{left, top, left + random.Below(from.width + 4),
                             top + random.Below(from.height + 4)};
        const ResampleTarget target{to.pixels.data(), to.width, to.height, AnyRect(random, to)};
        const ResampleSource source{from.pixels.data(), from.width, from.height,
                                    AnyRect(random, from)};
        kernel(target, source, run % 2 == 0 ? std::nullopt : std::optional(clip));
        sum.AddEach(to.pixels);
    }
}

TEST_P(KernelRecord, Resample) {
    WalkRectangles("ResampleNearest", ResampleNearest);
    WalkRectangles("ResampleAverage", ResampleAverage);
    for (const int32_t boundary : {0, 1, 2, 3}) {
        WalkRectangles("ResampleBilinear, boundary " + std::to_string(boundary),
                       [&](const auto& target, const auto& source, const auto& clip) {
                           ResampleBilinear(boundary, source.width % 2 == 0, target, source, clip);
                       });
    }
}

void AddMapped(Checksum& sum, const ReducePalette& palette, const KVBitmap& bitmap) {
    for (const KVColorPalette& entry : palette.entries) {
        sum.Add(entry.Word(), entry.count);
    }
    for (int32_t dither = 0; dither < 4; ++dither) {
        const auto indexed = MapToIndexed(palette, &bitmap, dither);
        for (int32_t y = 0; y < indexed->Height(); ++y) {
            sum.AddEach(indexed->IndexRow(y));
        }
    }
}

TEST_P(KernelRecord, Palettes) {
    Checksum powers("QuantizePalette, powers of two");
    for (const Picture& picture : AllPictures().subspan(4 * kKinds, kKinds)) {
        const auto bitmap = MakeWorkBitmap(picture.pixels.data(), picture.width,
                                           {0, 0, picture.width, picture.height});
        for (int32_t power = 0; power < 10; ++power) {
            ReducePalette palette;
            ASSERT_TRUE(QuantizePalette(palette, bitmap.get(), power));
            AddMapped(powers, palette, *bitmap);
        }
    }
    // Palettes that no image gives: equal entries, all kinds of alpha close together, transparent
    // entries far from the opaque ones.
    Checksum any("MapToIndexed, any palette");
    SplitMix random(5);
    for (int32_t run = 0; run < 85; ++run) {
        ReducePalette palette;
        for (int32_t i = 0; i < 1 + run * 3; ++i) {
            const auto bits = random.Next();
            const auto color = static_cast<uint32_t>(bits) & (run % 2 == 0 ? 0xFF1F1F1F : ~0U);
            const uint32_t alphas[] = {color >> 24, 255, bits >> 63 == 0 ? 0U : 255U,
                                       (bits >> 60) % 4 == 0 ? 0U : 255U};
            palette.entries.emplace_back((color & 0xFFFFFF) | alphas[run % 4] << 24, 1U);
        }
        FinishPalette(palette);
        KVBitmap bitmap(37, 20);
        for (uint32_t& word : bitmap.Words()) {
            const auto bits = static_cast<uint32_t>(random.Next());
            const auto entry =
                static_cast<size_t>(random.Below(static_cast<int32_t>(palette.entries.size())));
            word = bits % 3 == 0 ? bits : (palette.entries[entry].Word() & 0xFFFFFF) | bits << 24;
        }
        AddMapped(any, palette, bitmap);
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, KernelRecord, kForms, FormName);

}  // namespace
}  // namespace imgbasic
