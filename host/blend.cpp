#include "host/blend.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace imgbasic::host {
namespace {

constexpr uint64_t kFull = kFullScale;
static_assert(kFull <= UINT64_MAX / kFull / kFull / kFull - 1,
              "a channel times two alphas and a denominator fits 64 bits, with its rounding");

/// over / under in channel steps, 0 to kFull; `under` is 1 to kFull.
struct Fraction {
    uint64_t over;
    uint64_t under;
};

/// The nearest that has the full scale as its denominator, for what has no exact fraction.
Fraction Nearest(double share) {
    constexpr double kScale = double{kFullScale} * kFullScale;
    return {static_cast<uint64_t>(std::llround(std::clamp(share, 0.0, 1.0) * kScale)), kFull};
}

Fraction Screen(uint64_t source, uint64_t backdrop) {
    return {kFull * (source + backdrop) - source * backdrop, kFull};
}

Fraction HardLight(uint64_t source, uint64_t backdrop) {
    return 2 * source <= kFull ? Fraction{2 * source * backdrop, kFull}
                               : Screen(2 * source - kFull, backdrop);
}

Fraction ColorDodge(uint64_t source, uint64_t backdrop) {
    if (backdrop == 0) {
        return {0, 1};
    }
    return source + backdrop >= kFull ? Fraction{kFull, 1}
                                      : Fraction{backdrop * kFull, kFull - source};
}

Fraction ColorBurn(uint64_t source, uint64_t backdrop) {
    if (backdrop == kFull) {
        return {kFull, 1};
    }
    return source + backdrop <= kFull ? Fraction{0, 1}
                                      : Fraction{(source + backdrop - kFull) * kFull, source};
}

Fraction SoftLight(uint64_t source, uint64_t backdrop) {
    const double s = static_cast<double>(source) / kFullScale;
    const double b = static_cast<double>(backdrop) / kFullScale;
    if (s <= 0.5) {
        return Nearest(b - (1 - 2 * s) * b * (1 - b));
    }
    const double raised = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return Nearest(b + (2 * s - 1) * (raised - b));
}

/// One channel by a mode that looks at no other.
Fraction Separable(CompositionKind kind, uint64_t source, uint64_t backdrop) {
    switch (kind) {
        case CompositionKind::Multiply:
            return {source * backdrop, kFull};
        case CompositionKind::Screen:
            return Screen(source, backdrop);
        case CompositionKind::Overlay:
            return HardLight(backdrop, source);
        case CompositionKind::Darken:
            return {std::min(source, backdrop), 1};
        case CompositionKind::Lighten:
            return {std::max(source, backdrop), 1};
        case CompositionKind::ColorDodge:
            return ColorDodge(source, backdrop);
        case CompositionKind::ColorBurn:
            return ColorBurn(source, backdrop);
        case CompositionKind::HardLight:
            return HardLight(source, backdrop);
        case CompositionKind::SoftLight:
            return SoftLight(source, backdrop);
        case CompositionKind::Difference:
            return {std::max(source, backdrop) - std::min(source, backdrop), 1};
        default:
            return {source, 1};
    }
}

/// Red, green, blue, 0 to 1.
using Color = std::array<double, 3>;

Color ColorOf(RGBA16 pixel) {
    return {double{1} * pixel.r / kFullScale, double{1} * pixel.g / kFullScale,
            double{1} * pixel.b / kFullScale};
}

double Luminosity(const Color& color) {
    return 0.3 * color[0] + 0.59 * color[1] + 0.11 * color[2];
}

double Saturation(const Color& color) {
    const auto [least, most] = std::ranges::minmax(color);
    return most - least;
}

/// The colour with another luminosity, drawn towards that gray as far as it leaves the range.
Color WithLuminosity(Color color, double luminosity) {
    const double shift = luminosity - Luminosity(color);
    for (double& channel : color) {
        channel += shift;
    }
    const auto [least, most] = std::ranges::minmax(color);
    for (double& channel : color) {
        if (least < 0) {
            channel = luminosity + (channel - luminosity) * luminosity / (luminosity - least);
        } else if (most > 1) {
            channel = luminosity + (channel - luminosity) * (1 - luminosity) / (most - luminosity);
        }
    }
    return color;
}

/// The colour with its channels spread from 0 to `saturation`; a gray has none to spread.
Color WithSaturation(Color color, double saturation) {
    const auto [least, most] = std::ranges::minmax(color);
    for (double& channel : color) {
        channel = most > least ? (channel - least) * saturation / (most - least) : 0;
    }
    return color;
}

Color NonSeparable(CompositionKind kind, const Color& source, const Color& backdrop) {
    const double luminosity = Luminosity(backdrop);
    switch (kind) {
        case CompositionKind::Hue:
            return WithLuminosity(WithSaturation(source, Saturation(backdrop)), luminosity);
        case CompositionKind::Saturation:
            return WithLuminosity(WithSaturation(backdrop, Saturation(source)), luminosity);
        case CompositionKind::Color:
            return WithLuminosity(source, luminosity);
        default:
            return WithLuminosity(backdrop, Luminosity(source));
    }
}

std::array<Fraction, 3> Mixed(RGBA16 source, CompositionKind kind, RGBA16 backdrop) {
    if (kind >= CompositionKind::Hue && kind <= CompositionKind::Luminosity) {
        const Color color = NonSeparable(kind, ColorOf(source), ColorOf(backdrop));
        return {Nearest(color[0]), Nearest(color[1]), Nearest(color[2])};
    }
    return {Separable(kind, source.r, backdrop.r), Separable(kind, source.g, backdrop.g),
            Separable(kind, source.b, backdrop.b)};
}

}  // namespace

RGBA16 Blend(RGBA16 source, CompositionKind kind, RGBA16 backdrop) {
    // Where only one of the two covers, its own colour shows; where both do, the mixed one.
    const uint64_t onlySource = source.a * (kFull - backdrop.a);
    const uint64_t onlyBackdrop = backdrop.a * (kFull - source.a);
    const uint64_t both = uint64_t{source.a} * backdrop.a;
    const uint64_t cover = onlySource + onlyBackdrop + both;
    const auto join = [=](uint64_t above, uint64_t below, Fraction mixed) {
        const uint64_t whole = cover * mixed.under;
        const uint64_t sum =
            (above * onlySource + below * onlyBackdrop) * mixed.under + both * mixed.over;
        return static_cast<uint16_t>((sum + whole / 2) / whole);
    };
    const std::array<Fraction, 3> mixed = Mixed(source, kind, backdrop);
    return {join(source.r, backdrop.r, mixed[0]), join(source.g, backdrop.g, mixed[1]),
            join(source.b, backdrop.b, mixed[2]),
            static_cast<uint16_t>((cover + kFull / 2) / kFull)};
}

RGBA16 Operate(RGBA16 source, CompositionKind kind, RGBA16 backdrop) {
    const uint64_t above = source.a;
    const uint64_t below = backdrop.a;
    const auto rounded = [](uint64_t product) {
        return static_cast<uint16_t>((product + kFull / 2) / kFull);
    };
    RGBA16 result = backdrop;
    if (kind == CompositionKind::DestinationIn) {
        result.a = rounded(above * below);
        return result;
    }
    if (kind == CompositionKind::DestinationOut) {
        result.a = rounded((kFull - above) * below);
        return result;
    }
    // Atop: the one's colour over the other's, in the coverage of the lower of the two.
    const bool isSourceAbove = kind == CompositionKind::SourceAtop;
    const uint64_t weight = isSourceAbove ? above : kFull - below;
    const auto mix = [&](uint64_t upper, uint64_t lower) {
        return rounded(upper * weight + lower * (kFull - weight));
    };
    result.a = isSourceAbove ? backdrop.a : source.a;
    if (result.a != 0) {
        result = {mix(source.r, backdrop.r), mix(source.g, backdrop.g), mix(source.b, backdrop.b),
                  result.a};
    }
    return result;
}

}  // namespace imgbasic::host
