#include "host/flatten.h"

#include <algorithm>
#include <span>

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

/// Joins within the backdrop's coverage: as onto an opaque pixel, whose alpha is then put back.
RGBA16 CompositeClipped(RGBA16 source, CompositionKind kind, RGBA16 backdrop) {
    RGBA16 joined = Composite(source, kind, {backdrop.r, backdrop.g, backdrop.b, kFullScale});
    joined.a = backdrop.a;
    return joined;
}

/// Joins every pixel of `run`, its alpha reduced to `opacity` percent, onto the row `out`.
template <auto join>
void JoinRun(const RowRun& run, uint32_t opacity, CompositionKind kind, std::span<RGBA16> out) {
    auto below = out.begin() + run.left;
    for (RGBA16 pixel : run.pixels) {
        if (opacity < 100) {
            pixel.a = static_cast<uint16_t>((pixel.a * opacity + 50) / 100);
        }
        *below = join(pixel, kind, *below);
        ++below;
    }
}

/// Composes single rows, so that groups need a row of scratch space and no further pictures.
class RowComposer {
  public:
    RowComposer(int32_t width, int32_t height, int32_t y) : width_(width), height_(height), y_(y) {}

    /// Composes Items or Layers, 0 on top, onto `out`.
    template <typename Member>
    void ComposeStack(const std::vector<Member>& members, std::span<RGBA16> out) const {
        size_t base = members.size();
        while (base > 0) {
            --base;
            size_t top = base;
            while (top > 0 && Visit(members[top - 1], [](const auto& m) { return m.clip; })) {
                --top;
            }
            ComposeGroup(std::span(members).subspan(top, base - top), members[base], out);
            base = top;
        }
    }

  private:
    /// Composes `base` with the members clipped to it, and joins the whole onto `out`.
    template <typename Member>
    void ComposeGroup(std::span<const Member> clipped, const Member& base,
                      std::span<RGBA16> out) const {
        Visit(base, [&](const auto& lowest) {
            if (!lowest.visible || lowest.opacity == 0) {
                return;
            }
            std::vector<RGBA16> scratch;
            RowRun run = RunOf(lowest, scratch);
            std::vector<RGBA16> group;
            if (!clipped.empty()) {
                group.resize(out.size());
                std::ranges::copy(run.pixels, group.begin() + run.left);
                for (size_t i = clipped.size(); i-- > 0;) {
                    Visit(clipped[i], [&](const auto& member) { ComposeClipped(member, group); });
                }
                run = {0, group};
            }
            JoinRun<Composite>(run, lowest.opacity, lowest.kind, out);
        });
    }

    template <typename LayerOrFolder>
    void ComposeClipped(const LayerOrFolder& member, std::span<RGBA16> group) const {
        if (member.visible && member.opacity > 0) {
            std::vector<RGBA16> scratch;
            JoinRun<CompositeClipped>(RunOf(member, scratch), member.opacity, member.kind, group);
        }
    }

    RowRun RunOf(const Layer& layer, std::vector<RGBA16>&) const {
        const PixelRect bounds = ClipToImage(layer.bounds, width_, height_);
        if (y_ < bounds.top || y_ >= bounds.bottom) {
            return {};
        }
        const int64_t first = int64_t{y_} * width_ + bounds.left;
        return {bounds.left,
                std::span(layer.pixels)
                    .subspan(static_cast<size_t>(first), static_cast<size_t>(bounds.Width()))};
    }

    RowRun RunOf(const Folder& folder, std::vector<RGBA16>& scratch) const {
        scratch.resize(static_cast<size_t>(width_));
        ComposeStack(folder.layers, scratch);
        return {0, scratch};
    }

    template <typename Function>
    static auto Visit(const Layer& layer, Function function) {
        return function(layer);
    }

    template <typename Function>
    static auto Visit(const Item& item, Function function) {
        return std::visit(function, item);
    }

    int32_t width_;
    int32_t height_;
    int32_t y_;
};

}  // namespace

RGBA16 Composite(RGBA16 source, CompositionKind kind, RGBA16 backdrop) {
    if (source.a == 0) {
        return backdrop == RGBA16{} ? source : backdrop;
    }
    return kind == CompositionKind::Additive ? Plus(source, backdrop) : Over(source, backdrop);
}

std::vector<RGBA16> Flatten(const Document& document) {
    std::vector<RGBA16> flat(PixelCount(document.width, document.height));
    const auto width = static_cast<size_t>(std::max(document.width, 0));
    for (int32_t y = 0; y < document.height; ++y) {
        const RowComposer composer(document.width, document.height, y);
        composer.ComposeStack(document.items,
                              std::span(flat).subspan(static_cast<size_t>(y) * width, width));
    }
    return flat;
}

}  // namespace imgbasic::host
