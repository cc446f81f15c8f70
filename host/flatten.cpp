#include "host/flatten.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "host/blend.h"

namespace imgbasic::host {
namespace {

constexpr uint32_t kFull = kFullScale;
static_assert(uint64_t{kFull} * kFull + kFull / 2 <= UINT32_MAX,
              "a weighted channel with its rounding fits 32 bits");

/// A share of what lies in a row: `pixels` begin at column `left`.
struct RowRun {
    int32_t left = 0;
    std::span<const RGBA16> pixels;
};

/// Source-over where the backdrop is opaque, which is the common case: everything fits 32 bits.
RGBA16 OverOpaque(RGBA16 source, RGBA16 backdrop) {
    const uint32_t cover = source.a;
    const auto mix = [cover](uint32_t upper, uint32_t lower) {
        return static_cast<uint16_t>((upper * cover + lower * (kFull - cover) + kFull / 2) / kFull);
    };
    return {mix(source.r, backdrop.r), mix(source.g, backdrop.g), mix(source.b, backdrop.b),
            kFullScale};
}

RGBA16 Over(RGBA16 source, RGBA16 backdrop) {
    if (source.a == kFull || backdrop.a == 0) {
        return source;
    }
    if (backdrop.a == kFull) {
        return OverOpaque(source, backdrop);
    }
    const uint64_t upper = uint64_t{source.a} * kFull;
    const uint64_t lower = uint64_t{backdrop.a} * (kFull - source.a);
    const uint64_t cover = upper + lower;
    const auto mix = [=](uint64_t above, uint64_t below) {
        return static_cast<uint16_t>((above * upper + below * lower + cover / 2) / cover);
    };
    return {mix(source.r, backdrop.r), mix(source.g, backdrop.g), mix(source.b, backdrop.b),
            static_cast<uint16_t>((cover + kFull / 2) / kFull)};
}

RGBA16 Plus(RGBA16 source, RGBA16 backdrop) {
    const uint64_t alpha = std::min(uint32_t{source.a} + backdrop.a, kFull);
    const auto add = [=](uint64_t upper, uint64_t lower) {
        const uint64_t sum = (upper * source.a + lower * backdrop.a + alpha / 2) / alpha;
        return static_cast<uint16_t>(std::min<uint64_t>(sum, kFull));
    };
    return {add(source.r, backdrop.r), add(source.g, backdrop.g), add(source.b, backdrop.b),
            static_cast<uint16_t>(alpha)};
}

/// A fully transparent source leaves the backdrop, but what it hides survives over nothing.
RGBA16 Kept(RGBA16 source, RGBA16 backdrop) {
    return backdrop == RGBA16{} ? source : backdrop;
}

RGBA16 JoinNormal(RGBA16 source, RGBA16 backdrop) {
    return source.a == 0 ? Kept(source, backdrop) : Over(source, backdrop);
}

RGBA16 JoinAdditive(RGBA16 source, RGBA16 backdrop) {
    return source.a == 0 ? Kept(source, backdrop) : Plus(source, backdrop);
}

bool IsSourceOver(CompositionKind kind) {
    return kind <= CompositionKind::NormalAlpha || kind == CompositionKind::Other;
}

/// What an opacity multiplies alpha with, in billionths, so that a whole percentage is exact.
constexpr uint64_t kWhole = 1'000'000'000;

uint64_t WeightOf(const LayerAttributes& member) {
    return static_cast<uint64_t>(std::llround(std::clamp(member.opacity, 0.0, 100.0) * 1e7));
}

bool IsShown(const LayerAttributes& member) {
    return member.visible && WeightOf(member) > 0;
}

bool IsPlain(const LayerAttributes& member) {
    return WeightOf(member) == kWhole && IsSourceOver(member.kind);
}

const LayerAttributes& AttributesOf(const Item& item) {
    return std::visit([](const auto& member) -> const LayerAttributes& { return member; }, item);
}

/// Joins every pixel of `run`, its alpha weighted, onto the row `out`.
template <typename Join>
void JoinPixels(const RowRun& run, uint64_t weight, std::span<RGBA16> out, Join join) {
    auto below = out.begin() + run.left;
    for (RGBA16 pixel : run.pixels) {
        if (weight < kWhole) {
            pixel.a = static_cast<uint16_t>((pixel.a * weight + kWhole / 2) / kWhole);
        }
        *below = join(pixel, *below);
        ++below;
    }
}

/// Joins `run` onto the row `out` as `member` says; a clipped one within the row's coverage, as
/// onto opaque pixels, whose alpha is then put back.
void JoinRun(const RowRun& run, const LayerAttributes& member, bool clipped,
             std::span<RGBA16> out) {
    const auto joinBy = [&](auto join) {
        if (!clipped) {
            JoinPixels(run, WeightOf(member), out, join);
            return;
        }
        JoinPixels(run, WeightOf(member), out, [join](RGBA16 source, RGBA16 backdrop) {
            RGBA16 joined = join(source, {backdrop.r, backdrop.g, backdrop.b, kFullScale});
            joined.a = backdrop.a;
            return joined;
        });
    };
    // The frequent kinds have loops of their own, into which the compiler draws the arithmetic.
    if (IsSourceOver(member.kind)) {
        joinBy([](RGBA16 source, RGBA16 backdrop) { return JoinNormal(source, backdrop); });
    } else if (member.kind == CompositionKind::Additive) {
        joinBy([](RGBA16 source, RGBA16 backdrop) { return JoinAdditive(source, backdrop); });
    } else {
        joinBy([kind = member.kind](RGBA16 source, RGBA16 backdrop) {
            return Composite(source, kind, backdrop);
        });
    }
}

/// Composes single rows, so that groups need a row of scratch space and no further pictures.
class RowComposer {
  public:
    RowComposer(int32_t width, int32_t height, int32_t y) : width_(width), height_(height), y_(y) {}

    /// Composes items, 0 on top, onto `out`.
    void ComposeStack(const std::vector<Item>& items, std::span<RGBA16> out) const {
        size_t base = items.size();
        while (base > 0) {
            --base;
            size_t top = base;
            while (top > 0 && AttributesOf(items[top - 1]).clip) {
                --top;
            }
            ComposeGroup(std::span(items).subspan(top, base - top), items[base], out);
            base = top;
        }
    }

  private:
    /// Composes `base` with the items clipped to it, and joins the whole onto `out`.
    void ComposeGroup(std::span<const Item> clipped, const Item& base,
                      std::span<RGBA16> out) const {
        const LayerAttributes& lowest = AttributesOf(base);
        if (!IsShown(lowest)) {
            return;
        }
        const auto* folder = std::get_if<Folder>(&base);
        if (folder != nullptr && !folder->isolated && IsPlain(*folder) && clipped.empty()) {
            ComposeStack(folder->items, out);
            return;
        }
        std::vector<RGBA16> scratch;
        RowRun run = RunOf(base, scratch);
        std::vector<RGBA16> group;
        if (!clipped.empty() || ReachesBeyondSource(lowest.kind)) {
            group.resize(out.size());
            std::ranges::copy(run.pixels, group.begin() + run.left);
            for (size_t i = clipped.size(); i-- > 0;) {
                ComposeClipped(clipped[i], group);
            }
            run = {0, group};
        }
        JoinRun(run, lowest, false, out);
    }

    void ComposeClipped(const Item& item, std::span<RGBA16> group) const {
        const LayerAttributes& member = AttributesOf(item);
        if (IsShown(member)) {
            std::vector<RGBA16> scratch;
            JoinRun(RunOf(item, scratch), member, true, group);
        }
    }

    RowRun RunOf(const Item& item, std::vector<RGBA16>& scratch) const {
        if (const auto* folder = std::get_if<Folder>(&item)) {
            scratch.resize(static_cast<size_t>(width_));
            ComposeStack(folder->items, scratch);
            return {0, scratch};
        }
        const auto& layer = std::get<Layer>(item);
        const PixelRect bounds = ClipToImage(layer.bounds, width_, height_);
        if (y_ < bounds.top || y_ >= bounds.bottom) {
            return {};
        }
        const int64_t first = int64_t{y_} * width_ + bounds.left;
        return {bounds.left,
                std::span(layer.pixels)
                    .subspan(static_cast<size_t>(first), static_cast<size_t>(bounds.Width()))};
    }

    int32_t width_;
    int32_t height_;
    int32_t y_;
};

/// The one layer that is the whole picture by itself; null when there is more to compose.
const Layer* OnlyLayer(const Document& document) {
    const auto* layer =
        document.items.size() == 1 ? std::get_if<Layer>(document.items.data()) : nullptr;
    return layer != nullptr && layer->visible && IsPlain(*layer) ? layer : nullptr;
}

void AddNotDrawn(const std::vector<Item>& items, std::vector<std::string>& phrases) {
    for (const Item& item : items) {
        const LayerAttributes& member = AttributesOf(item);
        const auto* folder = std::get_if<Folder>(&item);
        if (!IsShown(member)) {
            continue;
        }
        if (member.kind == CompositionKind::Other) {
            phrases.push_back(std::string(folder != nullptr ? "the folder" : "the layer") + " \"" +
                              member.name + "\" is \"" + member.otherKind + "\"");
        }
        if (folder != nullptr) {
            AddNotDrawn(folder->items, phrases);
        }
    }
}

}  // namespace

RGBA16 Composite(RGBA16 source, CompositionKind kind, RGBA16 backdrop) {
    if (IsSourceOver(kind)) {
        return JoinNormal(source, backdrop);
    }
    if (kind == CompositionKind::Additive) {
        return JoinAdditive(source, backdrop);
    }
    if (IsOperator(kind)) {
        return Operate(source, kind, backdrop);
    }
    if (source.a == 0) {
        return Kept(source, backdrop);
    }
    return backdrop.a == 0 ? source : Blend(source, kind, backdrop);
}

std::vector<RGBA16> Flatten(const Document& document) {
    if (const Layer* layer = OnlyLayer(document)) {
        return layer->pixels;
    }
    std::vector<RGBA16> flat(PixelCount(document.width, document.height));
    const auto width = static_cast<size_t>(std::max(document.width, 0));
    for (int32_t y = 0; y < document.height; ++y) {
        const RowComposer composer(document.width, document.height, y);
        composer.ComposeStack(document.items,
                              std::span(flat).subspan(static_cast<size_t>(y) * width, width));
    }
    return flat;
}

std::vector<std::string> NotDrawn(const Document& document) {
    std::vector<std::string> phrases;
    AddNotDrawn(document.items, phrases);
    return phrases;
}

}  // namespace imgbasic::host
