#include "host/flatten.h"

#include <array>

#include "tests/host/test_files.h"
#include "tests/record/checksum.h"

namespace imgbasic::host {
namespace {

constexpr RGBA16 kBlack{0, 0, 0, kFullScale};

/// The sum is of results that, for the kinds up to Difference, lay within one step of the formulas
/// in floating point.
TEST(Flatten, CompositesRandomPixelsAsRecorded) {
    RandomDocuments random(1);
    Checksum sum("Composite, every kind");
    for (uint32_t i = 0; i < 400'000; ++i) {
        const auto kind =
            static_cast<CompositionKind>(i % static_cast<uint32_t>(CompositionKind::Other));
        const RGBA16 source = random.Pixel(i % 5 == 0 ? 8 : 16);
        const RGBA16 backdrop = random.Pixel(i % 5 == 0 ? 8 : 16);
        sum.AddEach(std::array{Composite(source, kind, backdrop)});
    }
}

TEST(Flatten, BlendsGraysByWorkedNumbers) {
    using enum CompositionKind;
    const struct {
        CompositionKind kind;
        /// Of a quarter and of three quarters over a half, and of the latter over an eighth.
        uint16_t results[3];
    } cases[] = {
        {Normal, {0x4000, 0xC000, 0xC000}},  {Additive, {0xC000, kFullScale, 0xE000}},
        {Multiply, {8224, 24672, 6168}},     {Screen, {40928, 57248, 51176}},
        {Overlay, {16576, 49215, 12336}},    {Darken, {0x4000, 0x8000, 0x2000}},
        {Lighten, {0x8000, 0xC000, 0xC000}}, {ColorDodge, {43748, kFullScale, 33158}},
        {ColorBurn, {0, 22100, 0}},          {HardLight, {16448, 49215, 37072}},
        {SoftLight, {24640, 39588, 15428}},  {Difference, {0x4000, 0x4000, 0xA000}},
    };
    for (const auto& [kind, results] : cases) {
        const auto blend = [kind = kind](uint16_t source, uint16_t backdrop) {
            return Composite({source, source, source, kFullScale}, kind,
                             {backdrop, backdrop, backdrop, kFullScale})
                .g;
        };
        EXPECT_EQ(blend(0x4000, 0x8000), results[0]) << static_cast<int>(kind);
        EXPECT_EQ(blend(0xC000, 0x8000), results[1]) << static_cast<int>(kind);
        EXPECT_EQ(blend(0xC000, 0x2000), results[2]) << static_cast<int>(kind);
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

TEST(Flatten, DrawsALayerWhereItIs) {
    const std::vector<RGBA16> pixels{{}, {}, kBlack};
    Document document = OneLayer(3, 1, 8, pixels);
    document.items.push_back(document.items[0]);
    EXPECT_EQ(Flatten(document), pixels);
}

/// The sum is of pictures in which every folder looked like the layer that its content flattens to.
TEST(Flatten, ShowsRandomDocumentsAsRecorded) {
    Checksum sum("Flatten, random documents");
    RandomDocuments random(7);
    for (int i = 0; i < 200; ++i) {
        sum.AddEach(Flatten(random.AnyDocument(13, 9)));
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

}  // namespace
}  // namespace imgbasic::host
