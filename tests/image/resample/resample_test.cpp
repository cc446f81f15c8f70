#include "lib/image/resample/resample.h"

#include <cmath>
#include <limits>
#include <new>
#include <random>
#include <span>
#include <utility>
#include <vector>

#include "lib/image/pixels/row_kernel.h"
#include "lib/image/resample/weighted_sum_lanes.h"
#include "tests/image/kernel_test.h"
#include "tests/image/scarce_memory.h"
#include "tests/record/pictures.h"

namespace imgbasic {
namespace {

enum Kernel { Nearest, Average, Bilinear };
constexpr Kernel kKernels[] = {Nearest, Average, Bilinear};

struct Image : Picture {
    explicit Image(Picture picture) : Picture(std::move(picture)) {}
    Image(int32_t w, int32_t h, RGBA16 fill)
        : Picture{w, h, std::vector<RGBA16>(static_cast<size_t>(w * h), fill)} {}

    ResampleRect Whole() const {
        return {0, 0, static_cast<double>(width), static_cast<double>(height)};
    }
    ResampleTarget Target(ResampleRect rect) { return {pixels.data(), width, height, rect}; }
    ResampleSource Source(ResampleRect rect) const { return {pixels.data(), width, height, rect}; }
};

void Draw(Kernel kernel, int32_t boundary, bool fade, const ResampleTarget& to,
          const ResampleSource& from, const PixelRect& clip) {
    switch (kernel) {
        case Nearest:
            return ResampleNearest(to, from, clip);
        case Average:
            return ResampleAverage(to, from, clip);
        case Bilinear:
            return ResampleBilinear(boundary, fade, to, from, clip);
    }
}

/// A copy at an address that is a multiple of 2 only.
struct ShiftedPixels {
    std::vector<uint16_t> words;
    RGBA16* pixels;

    explicit ShiftedPixels(const std::vector<RGBA16>& from)
        : words(4 * from.size() + 1), pixels(reinterpret_cast<RGBA16*>(&words[1])) {
        std::ranges::copy(from, pixels);
    }
};

class Resample : public KernelTest {};

/// Large results are written past the caches; the rows of this one, taken for large, begin at any
/// alignment.
TEST_P(Resample, DrawsLargeResultsAsTheScalarFormAtAnyAddress) {
    const Image source(MakePicture(300, 200, Kind::Edges));
    Image expected(1101, 48, RGBA16{1, 2, 3, 4});
    const ScopedStore streaming(Store::Streaming);
    for (const Kernel kernel : kKernels) {
        const ShiftedPixels from(source.pixels);
        const ShiftedPixels to(expected.pixels);
        const auto draw = [&](RGBA16* pixels, const RGBA16* sourcePixels) {
            Draw(kernel, BoundaryClamp, true, {pixels, 1101, 48, expected.Whole()},
                 {sourcePixels, 300, 200, source.Whole()}, {0, 0, 300, 200});
        };
        draw(to.pixels, from.pixels);
        const ScopedSimdLevel scalar(SimdLevel::Scalar);
        draw(expected.pixels.data(), source.pixels.data());
        EXPECT_TRUE(
            std::ranges::equal(expected.pixels, std::span(to.pixels, expected.pixels.size())))
            << "kernel " << kernel;
    }
}

Image NearlyOpaque(int32_t width, int32_t height) {
    Picture picture = MakePicture(width, height, Kind::Opaque);
    picture.pixels[picture.pixels.size() / 2].a = 0x1234;
    picture.pixels[picture.pixels.size() / 3].a = 0;
    return Image(std::move(picture));
}

/// Of ratios whose rows and columns are weighted alike, all or every second or third.
TEST_P(Resample, DrawsRegularRatiosAsTheScalarForm) {
    constexpr int32_t kHeight = 24;
    const auto expectEqual = [&](Kernel kernel, const Image& source, const Image& size) {
        Image drawn(size.width, size.height, RGBA16{});
        Image expected = drawn;
        // Columns at the sides and a row at the bottom take no part. Of 128 columns halved, the
        // last of a vector has one of its two, after others of exactly the same weights.
        const PixelRect clip{1, 0, source.width - 17, source.height - 1};
        for (const int32_t boundary : {BoundaryClip, BoundaryClamp, BoundaryRepeat}) {
            for (const double top : {0.0, 0.5}) {
                const ResampleRect from{0, top, static_cast<double>(source.width),
                                        static_cast<double>(source.height)};
                const auto draw = [&](Image& image) {
                    Draw(kernel, boundary, true, image.Target(image.Whole()), source.Source(from),
                         clip);
                };
                draw(drawn);
                const ScopedSimdLevel scalar(SimdLevel::Scalar);
                draw(expected);
                EXPECT_EQ(drawn.pixels, expected.pixels)
                    << source.width << " to " << size.width << ", kernel " << kernel
                    << ", boundary " << boundary << ", top " << top;
            }
        }
    };
    for (const int32_t width : {64, 75}) {
        const Image small = NearlyOpaque(width, kHeight);
        for (const double ratio : {2.0, 3.0, 4.0, 2.5, 4.0 / 3}) {
            const Image large = NearlyOpaque(static_cast<int32_t>(ratio * width),
                                             static_cast<int32_t>(ratio * kHeight));
            for (const Kernel kernel : kKernels) {
                expectEqual(kernel, large, small);
                expectEqual(kernel, small, large);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, Resample, kForms, FormName);

struct OneLane {
    using Doubles = double;
    static double Set(double value) { return value; }
    // The processor's: that of the Windows library is not correctly rounded.
#if defined(__x86_64__)
    __attribute__((target("fma")))
#endif
    static double
    MultiplyAdd(double a, double b, double c) {
        return __builtin_fma(a, b, c);
    }
};

TEST(RaisedOverFullScale, EqualsTheDivisionAlsoNextToTheMiddleOfTwoDoubles) {
    if (SupportedSimdLevel() < SimdLevel::Avx2) {
        GTEST_SKIP() << "this machine has no multiply-add";
    }
    const auto expectEqual = [](double x) {
        ASSERT_EQ(RaisedOverFullScale<OneLane>(x), x / kFullScale * kQuotientRaise) << x;
    };
    std::mt19937_64 random(7);
    for (int alpha = 0; alpha <= 0xFFFF; ++alpha) {
        expectEqual(alpha);
        expectEqual(alpha * std::ldexp(static_cast<double>(random() >> 11), -53));
        expectEqual(alpha * std::ldexp(static_cast<double>(random() >> 11), -160));
    }
    for (int i = 0; i < 1000000; ++i) {
        // What divides to nearly m + 1/2 last places, and the doubles beside it.
        const auto m = static_cast<double>(random() >> 11 | uint64_t{1} << 52);
        const double x = OneLane::MultiplyAdd(m, 255.0, 127.5);
        expectEqual(x);
        expectEqual(std::nextafter(x, 0));
        expectEqual(std::nextafter(x, 1e300));
    }
}

constexpr RGBA16 R{0xFF00, 0, 0, 0xFF00};
constexpr RGBA16 B{0, 0, 0xFF00, 0xFF00};
constexpr RGBA16 Clear{0x1200, 0x3400, 0x5600, 0};
constexpr RGBA16 Kept{1, 2, 3, 4};
constexpr RGBA16 R3B{0xBF40, 0, 0x3FC0, 0xFF00};  ///< three parts of R and one of B
constexpr RGBA16 RB3{0x3FC0, 0, 0xBF40, 0xFF00};

constexpr RGBA16 Faint(uint16_t alpha) {
    return {0xFF00, 0, 0, alpha};
}

/// A row drawn over Kept, between equal rows so that it is at no upper or lower boundary.
struct WorkedCase {
    Kernel kernel;
    int32_t boundary;
    bool fade;
    std::vector<RGBA16> source;
    std::vector<RGBA16> expected;
};

TEST(ResampleCases, AreWorkedOut) {
    const WorkedCase cases[] = {
        {Nearest, 0, false, {R}, {R, R, R}},
        {Nearest, 0, false, {R, Clear}, {R, R, Kept, Kept}},
        {Average, 0, false, {R, B, R, Faint(0x7F80)}, {{32640, 0, 32640, 65280}, Faint(48960)}},
        {Average, 0, false, {R, Clear, Clear, Clear}, {Faint(32640), Kept}},
        {Bilinear, 0, true, {R, R}, {Faint(48960), R, R, Faint(48960)}},
        {Bilinear, 1, false, {R, B}, {R, R3B, RB3, B}},
        {Bilinear, 1, true, {R, R}, {Faint(57600), R, R, Faint(57600)}},
        {Bilinear, 2, false, {R, B}, {R3B, R3B, RB3, RB3}},
        {Bilinear, 7, true, {R, R}, {Faint(48960), R, R, Faint(48960)}},
    };
    for (const WorkedCase& c : cases) {
        Image source(static_cast<int32_t>(c.source.size()), 3, RGBA16{});
        for (size_t i = 0; i < source.pixels.size(); ++i) {
            source.pixels[i] = c.source[i % c.source.size()];
        }
        Image result(static_cast<int32_t>(c.expected.size()), 3, Kept);
        Draw(c.kernel, c.boundary, c.fade, result.Target(result.Whole()),
             source.Source(source.Whole()), {0, 0, source.width, source.height});
        const auto middle = result.pixels.begin() + result.width;
        EXPECT_EQ(std::vector<RGBA16>(middle, middle + result.width), c.expected)
            << "case " << &c - cases;
    }
}

/// The first row drawn lies over fewer source rows than the next, which must not be when the memory
/// for those is asked for.
TEST(ResampleMemory, RunningOutOfItLeavesTheResultUntouched) {
    const Image source(4, 40, RGBA16{kFullScale, 0, 0, kFullScale});
    for (const Kernel kernel : kKernels) {
        bool drawn = false;
        for (int allowed = 0; !drawn; ++allowed) {
            Image result(4, 3, Kept);
            try {
                const ScopedAllocationLimit limit(allowed);
                Draw(kernel, BoundaryClip, false, result.Target({0, 0.9, 4, 2.1}),
                     source.Source(source.Whole()), {0, 0, 4, 40});
                drawn = true;
            } catch (const std::bad_alloc&) {
            }
            const auto kept = std::ranges::count(result.pixels, Kept);
            ASSERT_EQ(kept == 12, !drawn) << "kernel " << kernel << ", " << allowed;
        }
    }
}

/// Only the sanitizers, unmasked exceptions and the time limit see what goes wrong here.
TEST(ResampleHostile, RectanglesOfAnyDoublesStayInTheBuffers) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kValues[] = {0,      1,     -1,        0.3,        7,     1e-6,  2e-6,
                                  -1e-9,  1e9,   -1e9,      1e17,       -1e17, 1e300, -1e300,
                                  1e-300, -1e30, kInfinity, -kInfinity, kNaN};
    constexpr int32_t kEdges[] = {INT32_MIN, -1, 0, 2, 5, INT32_MAX};
    SplitMix random(5);
    const auto value = [&] { return kValues[random.Next() % std::size(kValues)]; };
    const auto edge = [&] { return kEdges[random.Next() % std::size(kEdges)]; };
    const Image source(MakePicture(5, 5, Kind::Edges));
    Image result(7, 7, Kept);
    for (int run = 0; run < 30000; ++run) {
        Draw(kKernels[random.Next() % 3], random.Below(5) - 1, true,
             result.Target({value(), value(), value(), value()}),
             source.Source({value(), value(), value(), value()}), {edge(), edge(), edge(), edge()});
    }
}

}  // namespace
}  // namespace imgbasic
