#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "lib/image/dither/map_to_indexed.h"
#include "lib/image/palette/quantize_palette.h"
#include "lib/image/simd/simd.h"
#include "tests/record/pictures.h"

namespace imgbasic {
namespace {

/// Waves under grain. Large enough for every way of the vector forms to be gone often: colours that
/// return hundreds of times, and errors of all sizes on either side of the palette's cells.
std::unique_ptr<KVBitmap> Waves(int32_t grain, bool translucent) {
    auto bitmap = std::make_unique<KVBitmap>(400, 300);
    SplitMix random(static_cast<uint64_t>(grain));
    for (size_t i = 0; i < bitmap->Words().size(); ++i) {
        const double x = static_cast<double>(i % 400) * 0.02;
        const size_t row = i / 400;
        const double y = static_cast<double>(row) * 0.03;
        const double waves[] = {std::sin(x), std::sin(y), std::sin(x + y), std::sin(x - y)};
        for (size_t channel = 0; channel < 4; ++channel) {
            const int level = static_cast<int>(127 + 100 * waves[channel]) + random.Below(grain);
            const bool opaque = channel == 3 && !translucent;
            bitmap->Words()[i] |= static_cast<uint32_t>(opaque ? 255 : std::min(level, 255))
                                  << (8 * channel);
        }
    }
    return bitmap;
}

TEST(DitherForms, MapAlike) {
    for (const int32_t colors : {5, 16, 40, 180, 256}) {
        for (const int32_t dither : {0, 1, 2, 3}) {
            const auto bitmap = Waves(colors, dither % 2 == 0 && colors > 100);
            ReducePalette palette;
            ASSERT_TRUE(QuantizePalette(palette, bitmap.get(), -colors));
            std::unique_ptr<KVBitmap> mapped[2];
            for (const bool vector : {false, true}) {
                const ScopedSimdLevel form(vector ? SupportedSimdLevel() : SimdLevel::Scalar);
                mapped[vector ? 1 : 0] = MapToIndexed(palette, bitmap.get(), dither);
            }
            for (int32_t y = 0; y < bitmap->Height(); ++y) {
                ASSERT_TRUE(std::ranges::equal(mapped[0]->IndexRow(y), mapped[1]->IndexRow(y)))
                    << colors << " colours, dither " << dither << ", row " << y;
            }
        }
    }
}

}  // namespace
}  // namespace imgbasic
