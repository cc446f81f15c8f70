#include "lib/image/resample.h"

#include <cmath>
#include <limits>

#include "lib/image/row_kernel.h"
#include "lib/image/weighted_sum_lanes.h"
#include "tests/image/kernel_test.h"
#include "tests/image/simple_resample.h"

namespace imgbasic {
namespace {

using Kernel = SimpleResample::Kernel;

struct Image {
    int32_t width;
    int32_t height;
    std::vector<RGBA16> pixels;

    ResampleRect Whole() const {
        return {0, 0, static_cast<double>(width), static_cast<double>(height)};
    }
    ResampleTarget Target(ResampleRect rect) { return {pixels.data(), width, height, rect}; }
    ResampleSource Source(ResampleRect rect) const { return {pixels.data(), width, height, rect}; }
};

void Draw(Kernel kernel, int32_t boundary, bool fade, const ResampleTarget& target,
          const ResampleSource& source, std::optional<PixelRect> clip = std::nullopt) {
    switch (kernel) {
        case Kernel::Nearest:
            return ResampleNearest(target, source, clip);
        case Kernel::Average:
            return ResampleAverage(target, source, clip);
        case Kernel::Bilinear:
            return ResampleBilinear(boundary, fade, target, source, clip);
    }
}

/// Random calls: sizes, rectangles within, across and beyond the images, clips, kinds of alpha.
class RandomCall {
  public:
    explicit RandomCall(uint32_t seed) : random_(seed), seed_(seed) {}

    int Int(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
    double Real(double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random_);
    }

    Image MakeImage() {
        const int longest = Int(0, 3) == 0 ? 150 : 20;
        Image image{Int(1, longest), Int(1, 20), {}};
        const size_t count = PixelCount(image.width, image.height);
        image.pixels = EdgyPixels(count, seed_ * 2 + 1);
        const int alphas = Int(0, 3);
        for (RGBA16& pixel : image.pixels) {
            if (alphas == 0 || (alphas == 1 && Int(0, 9) != 0)) {
                pixel.a = kFullScale;
            } else if (alphas == 2 && Int(0, 3) != 0) {
                pixel.a = 0;
            }
        }
        return image;
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

    ResampleRect Rect(const Image& image) {
        ResampleRect rect{};
        Span(rect.x, rect.width, image.width);
        Span(rect.y, rect.height, image.height);
        return rect;
    }

    PixelRect Clip(const Image& image) {
        if (Int(0, 1) == 0) {
            return {0, 0, image.width, image.height};
        }
        const int left = Int(-3, image.width);
        const int top = Int(-3, image.height);
        return {left, top, left + Int(-1, image.width + 3), top + Int(-1, image.height + 3)};
    }

  private:
    std::mt19937 random_;
    uint32_t seed_;
};

void ExpectOracle(uint32_t seed) {
    RandomCall call(seed);
    const Image source = call.MakeImage();
    Image expected = call.MakeImage();
    Image actual = expected;
    const bool whole = call.Int(0, 1) == 0;
    const ResampleRect to = whole ? expected.Whole() : call.Rect(expected);
    const ResampleRect from = whole ? source.Whole() : call.Rect(source);
    const PixelRect clip = call.Clip(source);
    const auto kernel = static_cast<Kernel>(call.Int(0, 2));
    const int32_t boundary = call.Int(-1, 3);
    const bool fade = call.Int(0, 1) == 0;
    SimpleResample oracle{kernel, boundary, fade, expected.Target(to), source.Source(from), clip};
    oracle.Draw();
    Draw(kernel, boundary, fade, actual.Target(to), source.Source(from), clip);
    for (size_t i = 0; i < expected.pixels.size(); ++i) {
        ASSERT_EQ(actual.pixels[i], expected.pixels[i])
            << "seed " << seed << ", kernel " << kernel << ", boundary " << boundary << ", pixel "
            << i % static_cast<size_t>(actual.width) << ", "
            << i / static_cast<size_t>(actual.width);
    }
}

class Resample : public KernelTest {};

TEST_P(Resample, DrawsWhatTheOracleDraws) {
    const ScopedSimdLevel level(GetParam());
    for (uint32_t seed = 0; seed < 10000; ++seed) {
        ASSERT_NO_FATAL_FAILURE(ExpectOracle(seed));
    }
}

/// Large results are written past the caches; the rows of this one begin at any alignment.
TEST_P(Resample, DrawsLargeResultsAlike) {
    Image source{300, 200, EdgyPixels(300 * 200, 9)};
    Image expected{1101, 480, std::vector<RGBA16>(size_t{1101} * 480, RGBA16{1, 2, 3, 4})};
    ASSERT_EQ(StoreFor(expected.pixels.size()), Store::Streaming);
    for (const Kernel kernel : {Kernel::Nearest, Kernel::Average, Kernel::Bilinear}) {
        Image actual = expected;
        SimpleResample{kernel,
                       BoundaryClamp,
                       true,
                       expected.Target(expected.Whole()),
                       source.Source(source.Whole()),
                       {0, 0, 300, 200}}
            .Draw();
        const ScopedSimdLevel level(GetParam());
        Draw(kernel, BoundaryClamp, true, actual.Target(actual.Whole()),
             source.Source(source.Whole()));
        EXPECT_TRUE(actual.pixels == expected.pixels) << "kernel " << kernel;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, Resample,
                         testing::Values(SimdLevel::Scalar, SimdLevel::Avx2, SimdLevel::Avx512));

struct OneLane {
    using Doubles = double;
    static double Set(double value) { return value; }
    static double MultiplyAdd(double a, double b, double c) { return std::fma(a, b, c); }
};

TEST(RaisedOverFullScale, EqualsTheDivisionAlsoNextToTheMiddleOfTwoDoubles) {
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
        const double x = std::fma(m, 255.0, 127.5);
        expectEqual(x);
        expectEqual(std::nextafter(x, 0));
        expectEqual(std::nextafter(x, 1e300));
    }
}

constexpr RGBA16 kRed{0xFF00, 0, 0, 0xFF00};
constexpr RGBA16 kBlue{0, 0, 0xFF00, 0xFF00};
constexpr RGBA16 kClear{0x1200, 0x3400, 0x5600, 0};
constexpr RGBA16 kKept{1, 2, 3, 4};

struct WorkedCase {
    const char* what;
    Kernel kernel;
    int32_t boundary;
    bool fade;
    std::vector<RGBA16> source;  ///< one row
    std::optional<PixelRect> clip;
    std::vector<RGBA16> expected;  ///< one row, drawn over kKept
};

TEST(ResampleCases, AreWorkedOut) {
    const WorkedCase cases[] = {
        {"one pixel fills all", Kernel::Nearest, 0, false, {kRed}, {}, {kRed, kRed, kRed}},
        {"nothing where the source is clear",
         Kernel::Nearest,
         0,
         false,
         {kRed, kClear},
         {},
         {kRed, kRed, kKept, kKept}},
        {"nearest inside a clip",
         Kernel::Nearest,
         0,
         false,
         {kRed, kBlue},
         PixelRect{1, 0, 2, 1},
         {kKept, kKept, kBlue, kBlue}},
        {"the mean of colours and alphas",
         Kernel::Average,
         0,
         false,
         {kRed, kBlue, kRed, {0xFF00, 0, 0, 0x7F80}},
         {},
         {{0x7F80, 0, 0x7F80, 0xFF00}, {0xFF00, 0, 0, 0xBF40}}},
        {"clear pixels halve alpha and do not tint",
         Kernel::Average,
         0,
         false,
         {kRed, kClear, kClear, kClear},
         {},
         {{0xFF00, 0, 0, 0x7F80}, kKept}},
        {"pixels outside the clip count as clear",
         Kernel::Average,
         0,
         false,
         {kRed, kBlue, kRed, kBlue},
         PixelRect{0, 0, 1, 1},
         {{0xFF00, 0, 0, 0x7F80}, kKept}},
        {"clip: edges fade",
         Kernel::Bilinear,
         0,
         true,
         {kRed, kRed},
         {},
         {{0xFF00, 0, 0, 0xBF40}, kRed, kRed, {0xFF00, 0, 0, 0xBF40}}},
        {"clamp: edges stretch",
         Kernel::Bilinear,
         1,
         false,
         {kRed, kBlue},
         {},
         {kRed, {0xBF40, 0, 0x3FC0, 0xFF00}, {0x3FC0, 0, 0xBF40, 0xFF00}, kBlue}},
        {"clamp with fade: 0.75 / 0.85 is left",
         Kernel::Bilinear,
         1,
         true,
         {kRed, kRed},
         {},
         {{0xFF00, 0, 0, 57600}, kRed, kRed, {0xFF00, 0, 0, 57600}}},
        {"repeat: the other end comes in",
         Kernel::Bilinear,
         2,
         false,
         {kRed, kBlue},
         {},
         {{0xBF40, 0, 0x3FC0, 0xFF00},
          {0xBF40, 0, 0x3FC0, 0xFF00},
          {0x3FC0, 0, 0xBF40, 0xFF00},
          {0x3FC0, 0, 0xBF40, 0xFF00}}},
        {"unknown: transparent outside the image",
         Kernel::Bilinear,
         7,
         true,
         {kRed, kRed},
         {},
         {{0xFF00, 0, 0, 0xBF40}, kRed, kRed, {0xFF00, 0, 0, 0xBF40}}},
    };
    for (const WorkedCase& c : cases) {
        SCOPED_TRACE(c.what);
        // Equal rows one below the other; the middle one is not at a boundary.
        Image source{static_cast<int32_t>(c.source.size()), 3, {}};
        for (int row = 0; row < 3; ++row) {
            source.pixels.insert(source.pixels.end(), c.source.begin(), c.source.end());
        }
        auto clip = c.clip;
        if (clip) {
            clip->bottom = 3;
        }
        Image result{static_cast<int32_t>(c.expected.size()), 3,
                     std::vector<RGBA16>(c.expected.size() * 3, kKept)};
        Draw(c.kernel, c.boundary, c.fade, result.Target(result.Whole()),
             source.Source(source.Whole()), clip);
        const std::vector<RGBA16> middle(result.pixels.begin() + result.width,
                                         result.pixels.begin() + 2 * result.width);
        EXPECT_EQ(middle, c.expected);
    }
}

TEST(ResampleProperties, ConstantImagesStayConstantAndWholeFactorsRepeat) {
    const RGBA16 colour{0x1234, 0xFF00, 0x80, 0xFF00};
    for (int size = 1; size <= 70; ++size) {
        const Image flat{37, 5, std::vector<RGBA16>(37 * 5, colour)};
        for (const Kernel kernel : {Kernel::Nearest, Kernel::Average, Kernel::Bilinear}) {
            Image result{size, 4, std::vector<RGBA16>(static_cast<size_t>(size) * 4, kKept)};
            Draw(kernel, BoundaryClamp, false, result.Target(result.Whole()),
                 flat.Source(flat.Whole()));
            const int slack = kernel == Kernel::Nearest ? 0 : 1;
            for (const RGBA16& pixel : result.pixels) {
                EXPECT_NEAR(pixel.r, colour.r, slack) << size;
                EXPECT_NEAR(pixel.g, colour.g, slack) << size;
                EXPECT_NEAR(pixel.b, colour.b, slack) << size;
                EXPECT_NEAR(pixel.a, colour.a, slack) << size;
            }
        }
    }
    for (const int factor : {1, 2, 4, 8}) {
        Image source{16, 8, EdgyPixels(16 * 8, 3)};
        for (RGBA16& pixel : source.pixels) {
            pixel.a = std::max<uint16_t>(pixel.a, 1);
        }
        Image result{16 * factor, 8 * factor, {}};
        result.pixels.resize(PixelCount(result.width, result.height));
        ResampleNearest(result.Target(result.Whole()), source.Source(source.Whole()));
        for (int y = 0; y < result.height; ++y) {
            for (int x = 0; x < result.width; ++x) {
                EXPECT_EQ(result.pixels[static_cast<size_t>(y * result.width + x)],
                          source.pixels[static_cast<size_t>(y / factor * 16 + x / factor)]);
            }
        }
    }
}

/// Only the sanitizers and the time limit see what goes wrong here.
TEST(ResampleHostile, RectanglesOfAnyDoublesStayInTheBuffers) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kValues[] = {0,     1,     -1,        0.3,        7,    1e-6,
                                  2e-6,  -1e-9, 5e-7,      1e9,        -1e9, 1e17,
                                  -1e17, 1e300, -1e300,    1e-300,     3e9,  -2e-6,
                                  1e154, -1e30, kInfinity, -kInfinity, kNaN, 4.999999999};
    constexpr int32_t kEdges[] = {INT32_MIN, -1, 0, 2, 5, INT32_MAX};
    std::mt19937 random(5);
    const auto value = [&] { return kValues[random() % std::size(kValues)]; };
    const auto edge = [&] { return kEdges[random() % std::size(kEdges)]; };
    const Image source{5, 5, EdgyPixels(25, 1)};
    Image result{7, 7, std::vector<RGBA16>(49)};
    for (int run = 0; run < 30000; ++run) {
        const ResampleRect to{value(), value(), value(), value()};
        const ResampleRect from{value(), value(), value(), value()};
        const PixelRect clip{edge(), edge(), edge(), edge()};
        const auto kernel = static_cast<Kernel>(random() % 3);
        Draw(kernel, static_cast<int32_t>(random() % 5) - 1, true, result.Target(to),
             source.Source(from), clip);
    }
    const std::vector<RGBA16> before = result.pixels;
    for (const Kernel kernel : {Kernel::Nearest, Kernel::Average, Kernel::Bilinear}) {
        const ResampleRect whole = result.Whole();
        Draw(kernel, 0, false, {nullptr, 7, 7, whole}, source.Source(source.Whole()));
        Draw(kernel, 0, false, {result.pixels.data(), 0, 7, whole}, source.Source(whole));
        Draw(kernel, 0, false, {result.pixels.data(), 7, -7, whole}, source.Source(whole));
        Draw(kernel, 0, false, result.Target(whole), {nullptr, 5, 5, whole});
        Draw(kernel, 0, false, result.Target(whole), {before.data(), 5, INT32_MIN, whole});
    }
    EXPECT_EQ(result.pixels, before) << "nothing to draw with";
}

}  // namespace
}  // namespace imgbasic
