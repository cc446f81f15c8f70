#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/reduce/work_bitmap.h"
#include "tests/image/kernel_test.h"
#include "tests/record/checksum.h"
#include "tests/record/pictures.h"

// What the kernels do that no filter asks them for.

namespace imgbasic {
namespace {

class KernelRecord : public KernelTest {};

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
