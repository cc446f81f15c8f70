#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <random>
#include <vector>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {

inline void PrintTo(const RGBA16& pixel, std::ostream* out) {
    *out << "(" << pixel.r << ", " << pixel.g << ", " << pixel.b << ", " << pixel.a << ")";
}

/// A suite that runs once for every vector level, to compare it with the scalar one. Levels that
/// this machine cannot run are skipped, visibly. Instantiate with kVectorLevels.
class KernelTest : public testing::TestWithParam<SimdLevel> {
  protected:
    void SetUp() override {
        if (GetParam() > SupportedSimdLevel()) {
            GTEST_SKIP() << "this machine does not run these instructions";
        }
    }
};

inline const auto kVectorLevels = testing::Values(SimdLevel::Avx2, SimdLevel::Avx512);

/// Pixels whose channels are a mix of any value and of those at the edges of the scale.
inline std::vector<RGBA16> EdgyPixels(size_t count, uint32_t seed) {
    static constexpr uint16_t kEdges[] = {0,      1,      0x7F,   0x80,   0xFF,   0x100,
                                          0x7FFF, 0x8000, 0xFE00, 0xFEFF, 0xFF00, 0xFF01,
                                          0xFFFF, 0xFF00, 0,      0xFF00};
    std::mt19937 random(seed);
    const auto channel = [&] {
        const auto bits = static_cast<uint32_t>(random());
        return (bits >> 16 & 1) != 0 ? static_cast<uint16_t>(bits) : kEdges[bits & 15];
    };
    std::vector<RGBA16> pixels(count);
    for (RGBA16& pixel : pixels) {
        pixel = {channel(), channel(), channel(), channel()};
    }
    return pixels;
}

/// Runs `kernel(dst, src, count)` at the scalar level and at `level` over all counts from 1 to 67
/// at all offsets from a 64-byte boundary, in steps of a pixel and up to three channels more, and
/// expects equal pixels, nothing written outside the run.
template <typename Kernel>
void ExpectEqualForms(SimdLevel level, uint32_t seed, Kernel&& kernel) {
    constexpr size_t kMaxCount = 67;
    constexpr size_t kOffsets = 8;
    struct alignas(64) Words {
        uint16_t words[4 * (kMaxCount + kOffsets + 1)];

        RGBA16* At(size_t offset, size_t shift) {
            return reinterpret_cast<RGBA16*>(words + 4 * offset + shift);
        }
    };
    const auto edgy = EdgyPixels(kMaxCount + kOffsets, seed);
    for (size_t count = 1; count <= kMaxCount; ++count) {
        const size_t shift = count % 4;
        Words src;
        std::memcpy(src.At(0, shift), edgy.data(), edgy.size() * sizeof(RGBA16));
        for (size_t offset = 0; offset < kOffsets; ++offset) {
            Words expected;
            std::fill(std::begin(expected.words), std::end(expected.words), uint16_t{0xDEAD});
            Words actual = expected;
            for (const bool scalar : {true, false}) {
                const ScopedSimdLevel scope(scalar ? SimdLevel::Scalar : level);
                kernel((scalar ? expected : actual).At(offset, shift),
                       src.At((offset * 3) % kOffsets, shift), count);
            }
            for (size_t i = 0; i < std::size(expected.words); ++i) {
                ASSERT_EQ(actual.words[i], expected.words[i])
                    << "count " << count << ", offset " << offset << ", word " << i << ", seed "
                    << seed;
            }
        }
    }
}

/// Runs `kernel(dst, src, count)` at the scalar level and at `level` over all of `pixels`, and
/// expects equal results.
template <typename Kernel>
void ExpectEqualResults(SimdLevel level, const std::vector<RGBA16>& pixels, Kernel&& kernel) {
    std::vector<RGBA16> expected(pixels.size());
    std::vector<RGBA16> actual(pixels.size());
    for (const bool scalar : {true, false}) {
        const ScopedSimdLevel scope(scalar ? SimdLevel::Scalar : level);
        kernel((scalar ? expected : actual).data(), pixels.data(), pixels.size());
    }
    const auto differs = std::ranges::mismatch(expected, actual).in1 - expected.begin();
    const auto i = static_cast<size_t>(differs);
    ASSERT_EQ(i, pixels.size()) << testing::PrintToString(pixels[i]) << " became "
                                << testing::PrintToString(actual[i]);
}

/// One colour, the same in all channels, under every alpha there is.
inline std::vector<RGBA16> UnderEveryAlpha(uint16_t color) {
    std::vector<RGBA16> pixels(0x10000);
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = {color, color, color, static_cast<uint16_t>(i)};
    }
    return pixels;
}

}  // namespace imgbasic
