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
#include "tests/image/resample/simple_resample.h"
#include "tests/image/scarce_memory.h"
#include "tests/record/pictures.h"

namespace imgbasic {
namespace {

using Kernel = SimpleResample::Kernel;
constexpr Kernel kKernels[] = {Kernel::Nearest, Kernel::Average, Kernel::Bilinear};

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

void Draw(const SimpleResample& call) {
    switch (call.kernel) {
        case Kernel::Nearest:
            return ResampleNearest(call.d, call.s, call.clip);
        case Kernel::Average:
            return ResampleAverage(call.d, call.s, call.clip);
        case Kernel::Bilinear:
            return ResampleBilinear(call.boundary, call.fade, call.d, call.s, call.clip);
    }
}

void DrawWhole(Kernel kernel, int32_t boundary, bool fade, Image& to, const Image& from) {
    Draw({kernel,
          boundary,
          fade,
          to.Target(to.Whole()),
          from.Source(from.Whole()),
          {0, 0, from.width, from.height}});
}

/// Random calls: sizes, rectangles within, across and beyond the images, clips, kinds of alpha.
struct RandomCall : SplitMix {
    explicit RandomCall(uint64_t seed) : SplitMix(seed) {}

    int Int(int from, int to) { return from + Below(to - from + 1); }
    double Real(double from, double to) { return from + Fraction() * (to - from); }

    Image MakeImage() {
        const int width = Int(1, Int(0, 3) == 0 ? 150 : 20);
        const int height = Int(1, 20);
        return Image(MakePicture(width, height, Next() % kKinds, Next()));
    }

    /// One direction of a rectangle on `size` pixels.
    void Span(double& from, double& length, int size) {
        const int kind = Int(0, 5);
        from = kind < 2 ? 0 : Real(-0.3, 0.8) * size;
        length = kind < 2 ? size : Real(0, kind == 2 ? 0.1 : 1.5) * size;
        if (kind == 5) {
            from = std::round(from);
            length = std::round(length);
        }
    }

    ResampleRect Rect(const Picture& image) {
        ResampleRect rect{};
        Span(rect.x, rect.width, image.width);
        Span(rect.y, rect.height, image.height);
        return rect;
    }

    PixelRect Clip(const Picture& image) {
        const int x = Int(-3, image.width);
        const int y = Int(-3, image.height);
        const PixelRect part{x, y, x + Int(-1, image.width + 3), y + Int(-1, image.height + 3)};
        return Int(0, 1) == 0 ? PixelRect{0, 0, image.width, image.height} : part;
    }
};

void ExpectOracle(uint32_t seed) {
    RandomCall random(seed);
    const Image source = random.MakeImage();
    Image expected = random.MakeImage();
    Image actual = expected;
    const bool whole = random.Int(0, 1) == 0;
    SimpleResample call{static_cast<Kernel>(random.Int(0, 2)),
                        random.Int(-1, 3),
                        random.Int(0, 1) == 0,
                        actual.Target(whole ? actual.Whole() : random.Rect(actual)),
                        source.Source(whole ? source.Whole() : random.Rect(source)),
                        random.Clip(source)};
    Draw(call);
    call.d.pixels = expected.pixels.data();
    call.Draw();
    ASSERT_EQ(actual.pixels, expected.pixels)
        << "seed " << seed << ", kernel " << call.kernel << ", boundary " << call.boundary;
}

class Resample : public KernelTest {};

TEST_P(Resample, DrawsWhatTheOracleDraws) {
    for (uint32_t seed = 0; seed < 10000; ++seed) {
        ASSERT_NO_FATAL_FAILURE(ExpectOracle(seed));
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

/// Large results are written past the caches; the rows of this one, taken for large, begin at any
/// alignment.
TEST_P(Resample, DrawsLargeResultsAlikeAtAnyAddress) {
    const Image source(MakePicture(300, 200, Kind::Edges));
    Image expected(1101, 48, RGBA16{1, 2, 3, 4});
    const ScopedStore streaming(Store::Streaming);
    for (const Kernel kernel : kKernels) {
        SimpleResample call{kernel,
                            BoundaryClamp,
                            true,
                            expected.Target(expected.Whole()),
                            source.Source(source.Whole()),
                            {0, 0, 300, 200}};
        const ShiftedPixels from(source.pixels);
        const ShiftedPixels to(expected.pixels);
        SimpleResample shifted = call;
        shifted.s.pixels = from.pixels;
        shifted.d.pixels = to.pixels;
        Draw(shifted);
        call.Draw();
        EXPECT_TRUE(
            std::ranges::equal(expected.pixels, std::span(to.pixels, expected.pixels.size())))
            << "kernel " << kernel;
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
        {Kernel::Nearest, 0, false, {R}, {R, R, R}},
        {Kernel::Nearest, 0, false, {R, Clear}, {R, R, Kept, Kept}},
        {Kernel::Average,
         0,
         false,
         {R, B, R, Faint(0x7F80)},
         {{32640, 0, 32640, 65280}, Faint(48960)}},
        {Kernel::Average, 0, false, {R, Clear, Clear, Clear}, {Faint(32640), Kept}},
        {Kernel::Bilinear, 0, true, {R, R}, {Faint(48960), R, R, Faint(48960)}},
        {Kernel::Bilinear, 1, false, {R, B}, {R, R3B, RB3, B}},
        {Kernel::Bilinear, 1, true, {R, R}, {Faint(57600), R, R, Faint(57600)}},
        {Kernel::Bilinear, 2, false, {R, B}, {R3B, R3B, RB3, RB3}},
        {Kernel::Bilinear, 7, true, {R, R}, {Faint(48960), R, R, Faint(48960)}},
    };
    for (const WorkedCase& c : cases) {
        Image source(static_cast<int32_t>(c.source.size()), 3, RGBA16{});
        for (size_t i = 0; i < source.pixels.size(); ++i) {
            source.pixels[i] = c.source[i % c.source.size()];
        }
        Image result(static_cast<int32_t>(c.expected.size()), 3, Kept);
        DrawWhole(c.kernel, c.boundary, c.fade, result, source);
        const auto middle = result.pixels.begin() + result.width;
        EXPECT_EQ(std::vector<RGBA16>(middle, middle + result.width), c.expected)
            << "case " << &c - cases;
    }
}

TEST(ResampleProperties, ConstantImagesStayConstant) {
    const Image flat(37, 5, RGBA16{0x1234, 0xFF00, 0x80, 0xFF00});
    for (int size = 1; size <= 70; ++size) {
        for (const Kernel kernel : kKernels) {
            Image result(size, 4, Kept);
            DrawWhole(kernel, BoundaryClamp, false, result, flat);
            const int slack = kernel == Kernel::Nearest ? 0 : 1;
            for (const RGBA16& pixel : result.pixels) {
                ASSERT_NEAR(pixel.r, 0x1234, slack) << size;
                ASSERT_NEAR(pixel.g, 0xFF00, slack) << size;
                ASSERT_NEAR(pixel.b, 0x80, slack) << size;
                ASSERT_NEAR(pixel.a, 0xFF00, slack) << size;
            }
        }
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
            const SimpleResample call{kernel,
                                      BoundaryClip,
                                      false,
                                      result.Target({0, 0.9, 4, 2.1}),
                                      source.Source(source.Whole()),
                                      {0, 0, 4, 40}};
            try {
                const ScopedAllocationLimit limit(allowed);
                Draw(call);
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
        Draw({kKernels[random.Next() % 3],
              random.Below(5) - 1,
              true,
              result.Target({value(), value(), value(), value()}),
              source.Source({value(), value(), value(), value()}),
              {edge(), edge(), edge(), edge()}});
    }
}

}  // namespace
}  // namespace imgbasic
