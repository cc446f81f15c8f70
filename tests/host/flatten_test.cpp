#include "host/flatten.h"

#include <cmath>

#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

constexpr RGBA16 kBlack{0, 0, 0, kFullScale};

using Mix = double (*)(double source, double backdrop);

double Normal(double s, double) {
    return s;
}

double Screen(double s, double b) {
    return b + s - b * s;
}

double HardLight(double s, double b) {
    return s <= 0.5 ? b * 2 * s : Screen(2 * s - 1, b);
}

double SoftLight(double s, double b) {
    const double d = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return s <= 0.5 ? b - (1 - 2 * s) * b * (1 - b) : b + (2 * s - 1) * (d - b);
}

double ColorDodge(double s, double b) {
    return b == 0 ? 0 : s == 1 ? 1 : std::min(1.0, b / (1 - s));
}

double ColorBurn(double s, double b) {
    return b == 1 ? 1 : s == 0 ? 0 : 1 - std::min(1.0, (1 - b) / s);
}

const std::pair<CompositionKind, Mix> kMixes[] = {
    {CompositionKind::Normal, Normal},
    {CompositionKind::Additive, nullptr},
    {CompositionKind::Multiply, [](double s, double b) { return s * b; }},
    {CompositionKind::Screen, Screen},
    {CompositionKind::Overlay, [](double s, double b) { return HardLight(b, s); }},
    {CompositionKind::Darken, [](double s, double b) { return std::min(s, b); }},
    {CompositionKind::Lighten, [](double s, double b) { return std::max(s, b); }},
    {CompositionKind::ColorDodge, ColorDodge},
    {CompositionKind::ColorBurn, ColorBurn},
    {CompositionKind::HardLight, HardLight},
    {CompositionKind::SoftLight, SoftLight},
    {CompositionKind::Difference, [](double s, double b) { return std::abs(s - b); }},
};

/// Compositing as it is written in books, in floating point, colours in 0..1.
RGBA16 SimpleComposite(RGBA16 source, Mix mix, RGBA16 backdrop) {
    const double full = kFullScale;
    const double as = source.a / full;
    const double ab = backdrop.a / full;
    const double kept = mix == nullptr ? 1 : 1 - as;
    const double ao = std::min(as + ab * kept, 1.0);
    const auto channel = [&](uint16_t s, uint16_t b) {
        const double cs = s / full;
        const double cb = b / full;
        const double mixed = mix == nullptr ? cs : (1 - ab) * cs + ab * mix(cs, cb);
        return static_cast<uint16_t>(
            std::lround(std::min((mixed * as + cb * ab * kept) / ao, 1.0) * full));
    };
    return {channel(source.r, backdrop.r), channel(source.g, backdrop.g),
            channel(source.b, backdrop.b), static_cast<uint16_t>(std::lround(ao * full))};
}

TEST(Flatten, CompositesLikeTheFormulasWithinOneStep) {
    RandomDocuments random(1);
    for (int i = 0; i < 600'000; ++i) {
        const RGBA16 source = random.Pixel(i % 5 == 0 ? 8 : 16);
        const RGBA16 backdrop = random.Pixel(i % 5 == 0 ? 8 : 16);
        const auto& [kind, mix] = kMixes[static_cast<size_t>(i) % std::size(kMixes)];
        if (source.a == 0) {
            ASSERT_EQ(Composite(source, kind, backdrop), backdrop == RGBA16{} ? source : backdrop);
            continue;
        }
        const RGBA16 got = Composite(source, kind, backdrop);
        const RGBA16 want = SimpleComposite(source, mix, backdrop);
        for (const auto channel : {&RGBA16::r, &RGBA16::g, &RGBA16::b, &RGBA16::a}) {
            // One step where floating point rounds a half the other way.
            ASSERT_LE(std::abs(got.*channel - want.*channel), 1)
                << i << ": " << source.r << " " << source.a << " over " << backdrop.r << " "
                << backdrop.a << " by " << static_cast<int>(kind);
        }
    }
}

TEST(Flatten, ComposesByWorkedNumbers) {
    using enum CompositionKind;
    constexpr RGBA16 kRed{0xFF00, 0, 0, 0xFF00};
    constexpr RGBA16 kBlue{0, 0, 0xFF00, 0xFF00};
    constexpr RGBA16 kGray{0x8000, 0x8000, 0x8000, 0xFF00};
    constexpr RGBA16 kFaint{0, 0, 0xFF00, 0x4000};
    for (const auto& [kind, source, backdrop, want] : {
             // The luminosity of red is 0.3, of blue 0.11.
             std::tuple{Hue, kBlue, kRed, RGBA16{13936, 13936, 0xFF00, 0xFF00}},
             {Saturation, kGray, kRed, {19584, 19584, 19584, 0xFF00}},
             {Color, kGray, kRed, {19584, 19584, 19584, 0xFF00}},
             {Luminosity, kRed, kGray, {19584, 19584, 19584, 0xFF00}},
             {Luminosity, kGray, kBlue, {28750, 28750, 65280, 0xFF00}},
             // 0x4000 / 0xFF00 is 64 / 255.
             {DestinationIn, kFaint, kGray, {0x8000, 0x8000, 0x8000, 0x4000}},
             {DestinationIn, RGBA16{}, kGray, {0x8000, 0x8000, 0x8000, 0}},
             {DestinationOut, kFaint, kGray, {0x8000, 0x8000, 0x8000, 0xBF00}},
             {SourceAtop, kFaint, kGray, {24544, 24544, 40928, 0xFF00}},
             {DestinationAtop, kGray, kFaint, {24544, 24544, 40928, 0xFF00}},
         }) {
        EXPECT_EQ(Composite(source, kind, backdrop), want) << static_cast<int>(kind);
    }
}

TEST(Flatten, KeepsTheDigitsOfAnOpacity) {
    for (const auto& [percent, alpha] : {std::pair{12.3456789, 8059},
                                         {0.001, 1},
                                         {0.0007, 0},
                                         {33.3333333, 21760},
                                         {99.9993, 65280},
                                         {50.0, 32640}}) {
        Document document = OneLayer(1, 1, 16, {{1, 2, 3, kFullScale}});
        std::get<Layer>(document.items[0]).opacity = percent;
        EXPECT_EQ(Flatten(document)[0].a, alpha) << percent;
    }
}

TEST(Flatten, OneNormalLayerIsItself) {
    RandomDocuments random(2);
    const std::vector<RGBA16> pixels = random.Pixels(61 * 7, 16);
    Document document = OneLayer(61, 7, 16, pixels);
    EXPECT_TRUE(Flatten(document) == pixels);
    // Nor do empty layers above and below change anything.
    const Layer empty = LayerOf(std::vector<RGBA16>(61 * 7), 61, 7);
    document.items.insert(document.items.begin(), empty);
    document.items.emplace_back(empty);
    std::get<Layer>(document.items.back()).bounds = {0, 0, 9, 9};
    EXPECT_TRUE(Flatten(document) == pixels);
}

TEST(Flatten, AFolderIsTheLayerThatItLooksLike) {
    for (uint32_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        RandomDocuments random(seed);
        Document document = random.AnyDocument(13, 9);
        const std::vector<RGBA16> withFolders = Flatten(document);
        for (Item& item : document.items) {
            if (const auto* folder = std::get_if<Folder>(&item)) {
                Document inside{13, 9, 16, {}};
                inside.items = folder->items;
                Layer layer = LayerOf(Flatten(inside), 13, 9);
                layer.opacity = folder->opacity;
                layer.kind = folder->kind;
                layer.clip = folder->clip;
                layer.visible = folder->visible;
                item = std::move(layer);
            }
        }
        ASSERT_TRUE(Flatten(document) == withFolders);
    }
}

TEST(Flatten, AttributesDecideWhatIsShown) {
    constexpr uint16_t kHalf = kFullScale / 2;
    constexpr RGBA16 kRed{kFullScale, 0, 0, kFullScale};
    constexpr RGBA16 kBlue{0, 0, kFullScale, kFullScale};
    constexpr RGBA16 kPurple{kFullScale, 0, kFullScale, kFullScale};
    const auto layer = [](RGBA16 pixel, uint32_t opacity = 100, bool clip = false,
                          CompositionKind kind = CompositionKind::Normal) {
        Layer one = LayerOf({pixel}, 1, 1);
        one.opacity = opacity;
        one.clip = clip;
        one.kind = kind;
        return one;
    };
    const auto hidden = [](Layer shown) {
        shown.visible = false;
        return shown;
    };
    const auto folder = [](bool isolated, double opacity, const Layer& member) {
        Folder one;
        one.isolated = isolated;
        one.opacity = opacity;
        one.items = {member};
        return one;
    };
    const Layer multiply = layer(kRed, 100, false, CompositionKind::Multiply);
    const Layer plus = layer(kRed, 100, false, CompositionKind::Additive);
    struct Case {
        const char* what;
        std::vector<Item> items;
        RGBA16 flat;
    };
    for (const Case& c : {
             Case{"nothing", {}, {}},
             {"upper over lower", {layer(kRed), layer(kBlue)}, kRed},
             {"hidden", {hidden(layer(kRed)), layer(kBlue)}, kBlue},
             {"opacity 0", {layer(kRed, 0), layer(kBlue)}, kBlue},
             {"half", {layer(kRed, 50), layer(kBlue)}, {kHalf, 0, kHalf, kFullScale}},
             {"additive", {plus, layer(kBlue)}, kPurple},
             {"clipped to nothing there", {layer(kRed, 100, true), layer({}), layer(kBlue)}, kBlue},
             {"clipped to half",
              {layer(kRed, 100, true), layer({0, 0, 0, kHalf})},
              {kFullScale, 0, 0, kHalf}},
             {"clipped to the base, not to the clipped one between",
              {layer(kRed, 100, true), layer({}, 100, true), layer(kBlue)},
              kRed},
             {"clipped to a hidden one", {layer(kRed, 100, true), hidden(layer(kBlue))}, {}},
             {"clipped with nothing below", {layer(kRed, 100, true)}, kRed},
             {"multiplied into what is below an open folder",
              {folder(false, 100, multiply), layer(kBlue)},
              kBlack},
             {"not seen from inside an isolated one",
              {folder(true, 100, multiply), layer(kBlue)},
              kRed},
             {"nor from one that is translucent",
              {folder(false, 50, multiply), layer(kBlue)},
              {kHalf, 0, kHalf, kFullScale}},
             {"erased outside its source",
              {layer({}, 100, false, CompositionKind::DestinationIn), layer(kBlue)},
              {0, 0, 0xFF00, 0}},
             {"base's opacity",
              {layer(kRed, 100, true), layer(kBlue, 50)},
              {kFullScale, 0, 0, kHalf}},
         }) {
        EXPECT_EQ(Flatten({1, 1, 8, c.items})[0], c.flat) << c.what;
    }
}

TEST(Flatten, BoundsAreTheSmallestRectangleOfWhatIsThere) {
    RandomDocuments random(5);
    for (int i = 0; i < 500; ++i) {
        std::vector<RGBA16> pixels(11 * 8);
        PixelRect want{};
        for (uint32_t k = random.Below(4); k > 0; --k) {
            const auto x = static_cast<int32_t>(random.Below(11));
            const auto y = static_cast<int32_t>(random.Below(8));
            pixels[static_cast<size_t>(int64_t{y} * 11 + x)].g = 1;
            want = want.IsEmpty()
                       ? PixelRect{x, y, x + 1, y + 1}
                       : PixelRect{std::min(want.left, x), std::min(want.top, y),
                                   std::max(want.right, x + 1), std::max(want.bottom, y + 1)};
        }
        ASSERT_EQ(BoundsOf(pixels, 11, 8), want) << i;
    }
}

}  // namespace
}  // namespace imgbasic::host
