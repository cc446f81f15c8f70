// Paints the sample, a lake at dusk: smooth gradients, soft translucent shapes, additive light,
// hard lines, fine lettering and a few-coloured sprite, each on a layer of its own.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <string_view>

#include "host/image_file.h"
#include "samples/canvas.h"

namespace imgbasic::samples {
namespace {

constexpr int32_t kWidth = 1200;
constexpr int32_t kHeight = 800;
constexpr int32_t kHorizon = 480;
constexpr double kSunX = 770;
constexpr double kSunY = 408;
constexpr double kSunRadius = 40;

constexpr Color kHaze{246, 190, 150};
constexpr Color kNight{13, 20, 38};

Canvas NewCanvas() {
    return {kWidth, kHeight};
}

/// Calls paint(x, y) for every pixel from row `top` down to `bottom`.
template <typename Paint>
void ForRows(int32_t top, int32_t bottom, Paint paint) {
    for (int32_t y = top; y < bottom; ++y) {
        for (int32_t x = 0; x < kWidth; ++x) {
            paint(x, y);
        }
    }
}

double Distance(double x, double y) {
    return std::sqrt(x * x + y * y);
}

/// The sky's colour at `height` between the zenith, 0, and the horizon, 1.
Color SkyColor(double height) {
    constexpr std::array<Color, 5> kStops{Color{30, 41, 92}, Color{84, 74, 138},
                                          Color{178, 99, 142}, Color{238, 140, 112},
                                          Color{252, 205, 140}};
    const double place = std::clamp(height, 0.0, 1.0) * (kStops.size() - 1);
    const size_t stop = std::min(static_cast<size_t>(place), kStops.size() - 2);
    return Mix(kStops[stop], kStops[stop + 1], place - static_cast<double>(stop));
}

host::Layer Sky() {
    Canvas canvas = NewCanvas();
    ForRows(0, kHeight, [&](int32_t x, int32_t y) {
        canvas.Put(x, y, SkyColor(static_cast<double>(y) / kHorizon));
    });
    return canvas.ToLayer("空 sky");
}

host::Layer Sun() {
    Canvas canvas = NewCanvas();
    ForRows(0, kHorizon, [&](int32_t x, int32_t y) {
        const double edge = kSunRadius - Distance(x - kSunX, y - kSunY);
        canvas.Put(x, y, Mix({255, 208, 130}, {255, 244, 214}, edge / kSunRadius), edge + 0.5);
    });
    return canvas.ToLayer("太陽 sun");
}

host::Layer Glow() {
    Canvas canvas = NewCanvas();
    ForRows(0, kHorizon + 60, [&](int32_t x, int32_t y) {
        const double near = std::max(1 - Distance(x - kSunX, (y - kSunY) * 1.25) / 430, 0.0);
        const double below = 1 - Smooth(kHorizon - 10, kHorizon + 60, y);
        canvas.Put(x, y, {255, 168, 92}, near * near * 0.62 * below);
    });
    host::Layer layer = canvas.ToLayer("光 glow");
    layer.kind = host::CompositionKind::Additive;
    return layer;
}

/// Banks of cloud between two rows, `size` pixels long and a quarter of that high.
host::Layer Clouds(const char* name, int32_t top, int32_t bottom, double size, double least,
                   uint32_t seed) {
    Canvas canvas = NewCanvas();
    ForRows(top, bottom, [&](int32_t x, int32_t y) {
        const double density = Noise(x / size, y * 4 / size, 5, seed);
        const double lit = Noise(x / size, (y + 7) * 4 / size, 4, seed);
        const double height = static_cast<double>(y - top) / (bottom - top);
        const double window = Smooth(0, 0.3, height) * (1 - Smooth(0.65, 1, height));
        const Color color = Mix({122, 92, 142}, {255, 196, 164}, Smooth(0.30, 0.68, lit));
        canvas.Put(x, y, color, Smooth(least, least + 0.26, density) * window * 0.82);
    });
    return canvas.ToLayer(name);
}

struct Ridge {
    double base;    ///< row of the lowest points
    double height;  ///< pixels from there to the highest
    double length;  ///< pixels from one summit to the next, about
    int octaves;
    uint32_t seed;

    /// The row of the ridge at column `x`.
    double At(double x) const { return base - height * Noise(x / length, 0.5, octaves, seed); }
};

host::Layer Mountains() {
    Canvas canvas = NewCanvas();
    constexpr Ridge kRidge{486, 290, 230, 7, 41};
    ForRows(0, kHorizon, [&](int32_t x, int32_t y) {
        const double depth = y - kRidge.At(x);
        if (depth > -1) {
            // Spurs fall away from the summits at a slant and fray on their way down.
            const double fray = 34 * (Noise(x / 44.0, y / 30.0, 4, 43) - 0.5);
            const double along = x + 0.55 * depth + fray * Smooth(0, 30, depth);
            const double slope = kRidge.At(along + 4) - kRidge.At(along - 4);
            const Color rock = Mix({104, 86, 140}, {158, 112, 146}, Smooth(-7, 7, slope));
            const double snowLine = 16 + 36 * Noise(x / 9.0, y / 14.0, 3, 42);
            const Color snow = Mix({190, 164, 196}, {255, 222, 206}, Smooth(-6, 6, slope));
            const double snowed = (1 - Smooth(snowLine - 3, snowLine + 3, depth)) *
                                  (1 - Smooth(335, 365, kRidge.At(x)));
            const Color cover = Mix(rock, snow, snowed);
            canvas.Put(x, y, Mix(cover, kHaze, Smooth(360, kHorizon + 10, y) * 0.75), depth + 1);
        }
    });
    return canvas.ToLayer("遠い山 mountains");
}

host::Layer Hills() {
    Canvas canvas = NewCanvas();
    struct Hill {
        Ridge ridge;
        Color upper;
        Color lower;
    };
    constexpr Hill kHills[] = {
        {{484, 84, 210, 4, 51}, {120, 92, 138}, {206, 146, 146}},
        {{488, 46, 120, 5, 52}, {70, 66, 112}, {128, 96, 128}},
    };
    for (const Hill& hill : kHills) {
        ForRows(kHorizon - 90, kHorizon, [&](int32_t x, int32_t y) {
            const double depth = y - hill.ridge.At(x);
            canvas.Put(x, y, Mix(hill.upper, hill.lower, Smooth(0, 60, depth)), depth + 1);
        });
    }
    return canvas.ToLayer("丘 hills");
}

host::Layer Lake() {
    Canvas canvas = NewCanvas();
    ForRows(kHorizon, kHeight, [&](int32_t x, int32_t y) {
        const double depth = static_cast<double>(y - kHorizon) / (kHeight - kHorizon);
        // Ripples look longer and lower the farther away they are.
        const double scale = 0.12 + depth;
        const double ripple =
            Noise(x / (190 * scale), 60 * std::sqrt(depth + 0.01) + y * 0.02, 3, 61) - 0.5;
        const Color mirrored = SkyColor(1.02 - depth * 1.15 + ripple * 0.30);
        canvas.Put(x, y,
                   Mix(Mix(mirrored, {22, 34, 74}, 0.30 + 0.35 * depth), kHaze,
                       0.35 * (1 - Smooth(0, 0.10, depth))));
    });
    return canvas.ToLayer("湖 lake");
}

host::Layer Glitter() {
    Canvas canvas = NewCanvas();
    ForRows(kHorizon + 2, 720, [&](int32_t x, int32_t y) {
        const double depth = static_cast<double>(y - kHorizon) / 240;
        const double aside = Distance(x - kSunX, 0) / (34 + 105 * depth);
        const double streak = Noise(x / (12 + 40 * depth), 46 * std::sqrt(depth + 0.01), 3, 71);
        const double path = 1 - Smooth(0.1, 1, aside);
        const double strength = Smooth(0.46, 0.66, streak) * path * (1 - Smooth(0.45, 1, depth));
        canvas.Put(x, y, {255, 196, 120}, strength * 0.8);
    });
    host::Layer layer = canvas.ToLayer("水面のきらめき glitter");
    layer.kind = host::CompositionKind::Additive;
    layer.opacity = 85;
    return layer;
}

constexpr Ridge kBank{775, 150, 520, 4, 81};

/// How far the near bank reaches up: high at the sides, open to the lake between them.
double BankTop(int32_t x) {
    const double open = Smooth(180, 520, x) * (1 - Smooth(880, 1180, x));
    return kBank.At(x) + 78 * open;
}

host::Layer Bank() {
    Canvas canvas = NewCanvas();
    ForRows(560, kHeight, [&](int32_t x, int32_t y) {
        const double depth = y - BankTop(x);
        const double grass = Noise(x / 3.0, y / 11.0, 2, 82);
        canvas.Put(x, y, Mix(Mix({58, 62, 78}, {40, 52, 62}, grass), kNight, Smooth(0, 70, depth)),
                   depth + 1);
    });
    return canvas.ToLayer("岸 bank");
}

/// A fir whose foot stands at (x, foot): tiers of branches that widen downwards.
void PaintFir(Canvas& canvas, int32_t x, int32_t foot, int32_t height, uint32_t seed) {
    for (int32_t row = 0; row < height; ++row) {
        const double down = static_cast<double>(row) / height;
        const double tier = down * (6 + height / 40.0);
        const double hang = tier - std::floor(tier);
        const double reach = height * (0.012 + 0.205 * down) * (0.52 + 0.48 * hang);
        const double left = reach * (0.80 + 0.35 * Hash(row / 2, 0, seed));
        const double right = reach * (0.80 + 0.35 * Hash(row / 2, 1, seed));
        const int32_t y = foot - height + row;
        const auto columns = static_cast<int32_t>(reach * 1.2) + 2;
        for (int32_t dx = -columns; dx <= columns; ++dx) {
            const double inside = dx < 0 ? left + dx : right - dx;
            const double lit = Smooth(0.2, 1, dx / (right + 1)) * 0.55 * hang;
            canvas.Put(x + dx, y, Mix({17, 29, 44}, {92, 72, 84}, lit), inside + 0.5);
        }
    }
}

host::Layer Firs() {
    Canvas canvas = NewCanvas();
    struct Fir {
        int32_t x;
        int32_t height;
    };
    constexpr Fir kFirs[] = {{196, 210},  {128, 330},  {262, 150},  {52, 420},   {4, 300},
                             {1010, 120}, {1064, 205}, {1112, 160}, {1168, 290}, {1206, 220}};
    uint32_t seed = 90;
    for (const Fir& fir : kFirs) {
        PaintFir(canvas, fir.x, static_cast<int32_t>(BankTop(fir.x)) + 14, fir.height, ++seed);
    }
    return canvas.ToLayer("もみの木 firs");
}

host::Layer Mist() {
    Canvas canvas = NewCanvas();
    ForRows(430, 690, [&](int32_t x, int32_t y) {
        const double band = Smooth(430, 520, y) * (1 - Smooth(560, 690, y));
        const double aside = 1 - Smooth(150, 420, x) * (1 - Smooth(860, 1130, x));
        const double drift = Noise(x / 150.0, y / 34.0, 3, 101);
        canvas.Put(x, y, {226, 186, 190},
                   band * (0.2 + 0.8 * aside) * Smooth(0.25, 0.8, drift) * 0.6);
    });
    host::Layer layer = canvas.ToLayer("もや mist");
    layer.opacity = 80;
    return layer;
}

void PaintPier(Canvas& canvas, int32_t left, int32_t right, int32_t deck) {
    constexpr Color kPlank{74, 56, 66};
    constexpr Color kEdge{22, 20, 36};
    for (int32_t x = left + 20; x < right; x += 44) {
        canvas.Rectangle(x, deck - 14, x + 4, deck + 42, kEdge);
        canvas.Line(x + 4, deck - 13, x + 4, deck + 41, {150, 104, 92});
        // The rope sags from post to post.
        for (int32_t dx = 4; dx < 44 && x + 44 < right; ++dx) {
            canvas.Put(x + dx, deck - 12 + (dx - 4) * (44 - dx) / 66, kEdge);
        }
    }
    canvas.Rectangle(left, deck, right, deck + 9, kPlank);
    canvas.Line(left, deck, right - 1, deck, {214, 150, 118});
    canvas.Line(left, deck + 9, right - 1, deck + 9, kEdge);
    for (int32_t x = left + 7; x < right; x += 8) {
        canvas.Line(x, deck + 1, x - 2, deck + 8, kEdge);
    }
}

host::Layer LineArt() {
    Canvas canvas = NewCanvas();
    PaintPier(canvas, 262, 530, 646);
    constexpr int32_t kBirds[][3] = {
        {470, 176, 13}, {508, 160, 10}, {536, 186, 9}, {566, 168, 7}, {438, 204, 8}};
    for (const auto& [x, y, span] : kBirds) {
        for (const int32_t side : {-1, 1}) {
            canvas.Line(x, y, x + side * span / 2, y - span / 3, kNight);
            canvas.Line(x + side * span / 2, y - span / 3, x + side * span, y - span / 6, kNight);
        }
    }
    for (int32_t x = 2; x < kWidth; x += 3) {
        const auto foot = static_cast<int32_t>(BankTop(x)) + 4 + x % 5;
        const auto tall = static_cast<int32_t>(6 + 24 * Hash(x, 0, 111) * Hash(x / 40, 1, 111));
        const auto lean = static_cast<int32_t>(11 * Hash(x, 2, 111)) - 5;
        canvas.Line(x, foot, x + lean / 2, foot - tall / 2, {24, 34, 46});
        canvas.Line(x + lean / 2, foot - tall / 2, x + lean, foot - tall, {70, 68, 78});
    }
    return canvas.ToLayer("線画 line art");
}

host::Layer Boat() {
    Canvas canvas = NewCanvas();
    constexpr int32_t kDot = 4;
    constexpr std::string_view kRows[] = {
        "...........k............", "...........kr...........", "..........wkrrr.........",
        ".........wwkrr..........", ".........wwk............", "........wwwkc...........",
        ".......wwwwkcc..........", ".......wwwwkcc..........", "......wwwwwkccc.........",
        ".....wwwwwwkcccc........", "....wwwwwwwkccccc.......", "....wwwwwwwkcccccc......",
        "...........k............", ".bbbbbbbbbbkbbbbbbbbbbb.", "..nnnnnnnnnnnnnnnnnnnn..",
        "...bbbbbbbbbbbbbbbbbb...", "....nnnnnnnnnnnnnnnn...."};
    for (size_t row = 0; row < std::size(kRows); ++row) {
        for (size_t column = 0; column < kRows[row].size(); ++column) {
            Color color{};
            switch (kRows[row][column]) {
                case 'k':
                    color = {43, 32, 51};
                    break;
                case 'r':
                    color = {214, 64, 69};
                    break;
                case 'w':
                    color = {255, 243, 220};
                    break;
                case 'c':
                    color = {242, 201, 160};
                    break;
                case 'b':
                    color = {140, 78, 62};
                    break;
                case 'n':
                    color = {96, 50, 52};
                    break;
                default:
                    continue;
            }
            const int32_t x = 880 + static_cast<int32_t>(column) * kDot;
            const int32_t y = 478 + static_cast<int32_t>(row) * kDot;
            canvas.Rectangle(x, y, x + kDot, y + kDot, color);
        }
    }
    return canvas.ToLayer("boat sprite");
}

host::Layer Lettering() {
    Canvas canvas = NewCanvas();
    constexpr Color kInk{255, 240, 214};
    canvas.Text(40, 38, 3, "LAKE AT DUSK", kInk);
    canvas.Text(40, 68, 1, "IMGBASIC SAMPLE", kInk);
    canvas.Text(140, 68, 1, "1200 X 800", kInk);
    // A ruler of single pixels, which blurs at once when an image is resampled.
    for (int32_t x = 0; x <= 200; x += 2) {
        const int32_t length = x % 20 == 0 ? 9 : x % 10 == 0 ? 6 : 3;
        canvas.Line(40 + x, 84, 40 + x, 84 + length, kInk);
    }
    return canvas.ToLayer("文字 lettering");
}

host::Document Paint() {
    host::Folder clouds;
    clouds.name = "雲 clouds";
    clouds.opacity = 90;
    clouds.items = {Clouds("近い雲 near", 20, 300, 330, 0.50, 21),
                    Clouds("遠い雲 far", 230, 430, 210, 0.46, 31)};

    host::Document document{kWidth, kHeight, 8, {}};
    document.items = {Lettering(), LineArt(), Firs(),      Bank(), Mist(), Boat(), Glitter(),
                      Lake(),      Hills(),   Mountains(), clouds, Glow(), Sun(),  Sky()};
    return document;
}

}  // namespace
}  // namespace imgbasic::samples

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs(
            "usage: paint_sample FILE...\nPaints the sample picture into every FILE, in "
            "the format of its extension.\n",
            stderr);
        return 2;
    }
    try {
        const imgbasic::host::Document document = imgbasic::samples::Paint();
        for (int i = 1; i < argc; ++i) {
            for (const std::string& note :
                 imgbasic::host::SaveDocument(document, argv[i], {.overwrite = true})) {
                std::fprintf(stderr, "%s\n", note.c_str());
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
