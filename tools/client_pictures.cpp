// Documents for other programs to open, and the comparison of their pictures with ours.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/openraster.h"
#include "host/sample_depth.h"

namespace imgbasic::host {
namespace {

constexpr int32_t kTile = 48;
constexpr int32_t kColumns = 4;
/// The kinds that mix colours; the others act on the whole image.
constexpr int kKinds = static_cast<int>(CompositionKind::Luminosity) + 1;

/// Where the layer of a kind lies.
PixelRect TileOf(int index) {
    const int32_t left = index % kColumns * kTile;
    const int32_t top = index / kColumns * kTile;
    return {left, top, left + kTile, top + kTile};
}

constexpr int32_t kWidth = kColumns * kTile;
constexpr int32_t kHeight = (kKinds + kColumns - 1) / kColumns * kTile;

RGBA16 Pixel(int red, int green, int blue, int alpha) {
    const auto channel = [](int value) {
        return FromDepth8(static_cast<uint8_t>(std::clamp(value, 0, 255)));
    };
    return {channel(red), channel(green), channel(blue), channel(alpha)};
}

size_t PlaceOf(int32_t x, int32_t y) {
    return static_cast<size_t>(y) * kWidth + static_cast<size_t>(x);
}

/// A layer that `paint` colours inside `area`, by the coordinates within a tile, 0 to 255.
template <typename Paint>
Layer Painted(const std::string& name, const PixelRect& area, Paint paint) {
    Layer layer;
    layer.name = name;
    layer.bounds = area;
    layer.pixels.resize(PixelCount(kWidth, kHeight));
    for (int32_t y = area.top; y < area.bottom; ++y) {
        for (int32_t x = area.left; x < area.right; ++x) {
            layer.pixels[PlaceOf(x, y)] =
                paint(x % kTile * 255 / (kTile - 1), y % kTile * 255 / (kTile - 1));
        }
    }
    return layer;
}

/// The right half of a tile is half transparent in one layer, the lower half in the other.
RGBA16 Below(int x, int y) {
    return Pixel(x, y, (x + y) / 2, x < 128 ? 255 : 160);
}

RGBA16 Above(int x, int y) {
    return Pixel(y, 255 - (x + 2 * y) / 3, x * 2 % 256, y < 128 ? 255 : 96);
}

Document Modes(int bitDepth) {
    Document document{kWidth, kHeight, bitDepth, {}};
    for (int index = 0; index < kKinds; ++index) {
        Layer layer = Painted("", TileOf(index), Above);
        layer.kind = static_cast<CompositionKind>(index);
        layer.name = CompositeOperation(layer);
        document.items.emplace_back(std::move(layer));
    }
    document.items.emplace_back(Painted("below", {0, 0, kWidth, kHeight}, Below));
    return document;
}

/// Source-over only, with everything else that the format has.
Document Normal(int bitDepth) {
    Document document{kWidth, kHeight, bitDepth, {}};
    Folder inner;
    inner.name = "inner";
    // Other programs have eight bits for an opacity, in which these percentages are exact.
    inner.opacity = 20;
    inner.items.emplace_back(Painted("cut", {100, 60, kWidth, 200}, Above));
    Folder outer;
    outer.name = "outer";
    outer.opacity = 60;
    outer.items.emplace_back(std::move(inner));
    outer.items.emplace_back(Painted("in", {10, 10, 150, 130}, Above));
    document.items.emplace_back(std::move(outer));
    Layer hidden = Painted("hidden", {0, 0, kWidth, kHeight}, Above);
    hidden.visible = false;
    document.items.emplace_back(std::move(hidden));
    document.items.emplace_back(Painted("below", {0, 0, kWidth, kHeight}, Below));
    document.items.emplace_back(Painted("empty", {}, Above));
    return document;
}

/// Multiplying layers in folders that isolate them, and that do not.
Document Groups(int bitDepth) {
    Document document{kWidth, kHeight, bitDepth, {}};
    for (const bool isolated : {true, false}) {
        Folder folder;
        folder.name = isolated ? "isolated" : "open";
        folder.isolated = isolated;
        Layer layer =
            Painted("multiplied",
                    {isolated ? 0 : kWidth / 2, 0, isolated ? kWidth / 2 : kWidth, kHeight}, Above);
        layer.kind = CompositionKind::Multiply;
        folder.items.emplace_back(std::move(layer));
        document.items.emplace_back(std::move(folder));
    }
    document.items.emplace_back(Painted("below", {0, 0, kWidth, kHeight}, Below));
    return document;
}

/// The largest difference of two pixels of 8 bits a channel, that of colours as far as they cover.
double Difference(RGBA16 ours, RGBA16 theirs) {
    const double cover = double{1} * std::min(ToDepth8(ours.a), ToDepth8(theirs.a)) / 255;
    double most = std::abs(ToDepth8(ours.a) - ToDepth8(theirs.a));
    for (const auto channel : {&RGBA16::r, &RGBA16::g, &RGBA16::b}) {
        const int steps = std::abs(ToDepth8(ours.*channel) - ToDepth8(theirs.*channel));
        most = std::max(most, steps * cover);
    }
    return most;
}

/// How far a mode may be off, in steps of 255; programs round in between.
double Tolerance(CompositionKind kind, int bitDepth) {
    switch (kind) {
        case CompositionKind::Normal:
        case CompositionKind::NormalAlpha:
            return 1;
        case CompositionKind::Additive:
            // Krita keeps to the coverage of source-over, while plus adds that too.
            return 60;
        case CompositionKind::ColorDodge:
            // White dodges black to white in Krita; the standard leaves it black.
            return 100;
        case CompositionKind::ColorBurn:
            // It divides by what may have been rounded to a few steps.
            return bitDepth == 8 ? 10 : 3;
        default:
            return 3;
    }
}

/// The largest difference inside `area`.
double Largest(const std::vector<RGBA16>& a, const std::vector<RGBA16>& b, const PixelRect& area) {
    double most = 0;
    for (int32_t y = area.top; y < area.bottom; ++y) {
        for (int32_t x = area.left; x < area.right; ++x) {
            const auto place = PlaceOf(x, y);
            most = std::max(most, Difference(a[place], b[place]));
        }
    }
    return most;
}

/// Compares an .ora file's picture and another program's one, and prints the largest difference;
/// for the document of all modes that of each. Whether they are near enough.
bool Compare(const std::string& ours, const std::string& theirs) {
    const Document document = LoadDocument(ours);
    const Document other = LoadDocument(theirs);
    if (other.width != kWidth || other.height != kHeight) {
        std::puts("  another size");
        return false;
    }
    const std::vector<RGBA16> a = Flatten(document);
    const std::vector<RGBA16> b = Flatten(other);
    if (document.items.size() != kKinds + 1) {
        const double most = Largest(a, b, {0, 0, kWidth, kHeight});
        std::printf("  %.2f of 255\n", most);
        return most <= (std::holds_alternative<Folder>(document.items[1]) ? 3 : 1);
    }
    bool isNear = true;
    for (int index = 0; index < kKinds; ++index) {
        const auto kind = static_cast<CompositionKind>(index);
        const auto& layer = std::get<Layer>(document.items[static_cast<size_t>(index)]);
        const double most = Largest(a, b, TileOf(index));
        const double limit = Tolerance(kind, document.bitDepth);
        std::printf("  %-16s %6.2f of 255%s\n", layer.name.c_str(), most,
                    most > limit ? ", too much" : "");
        isNear = isNear && most <= limit;
    }
    return isNear;
}

int Run(int argc, char** argv) {
    const std::string verb = argc > 1 ? argv[1] : "";
    if (verb == "write" && argc == 3) {
        for (const int depth : {8, 16}) {
            const std::string end = std::to_string(depth) + ".ora";
            const std::filesystem::path folder = argv[2];
            (void)SaveDocument(Normal(depth), folder / ("normal" + end), {.overwrite = true});
            (void)SaveDocument(Groups(depth), folder / ("groups" + end), {.overwrite = true});
            (void)SaveDocument(Modes(depth), folder / ("modes" + end), {.overwrite = true});
        }
        return EXIT_SUCCESS;
    }
    if (verb == "compare" && argc == 4) {
        return Compare(argv[2], argv[3]) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    std::fputs("client_pictures write FOLDER | compare OURS.ora THEIRS.png\n", stderr);
    return 2;
}

}  // namespace
}  // namespace imgbasic::host

int main(int argc, char** argv) {
    try {
        return imgbasic::host::Run(argc, argv);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "client_pictures: %s\n", fault.what());
        return EXIT_FAILURE;
    }
}
