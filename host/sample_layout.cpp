#include "host/sample_layout.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "host/document.h"
#include "host/flatten.h"
#include "host/sample_pixels.h"

namespace imgbasic::host {
namespace {

constexpr size_t kMostColors = 256;

/// A pixel's four channels as a file of the sample's depth holds them.
template <typename Sample>
using Channels = std::array<Sample, 4>;

PaletteColor Sortable(Channels<uint8_t> color) {
    return {color[3], color[0], color[1], color[2]};
}

/// The first colours that it meets, up to one more than a palette holds.
class ColorSet {
  public:
    /// False when there is no room for the colour.
    bool Insert(Channels<uint8_t> color) {
        const auto key = std::bit_cast<uint32_t>(color);
        if (used_ > 0 && key == last_) {
            return true;
        }
        last_ = key;
        size_t slot = SlotOf(key);
        while (occupied_[slot] && keys_[slot] != key) {
            slot = (slot + 1) % kSlots;
        }
        if (!occupied_[slot]) {
            occupied_[slot] = true;
            keys_[slot] = key;
            ++used_;
        }
        return used_ <= kMostColors;
    }

    std::vector<PaletteColor> Sorted() const {
        std::vector<PaletteColor> colors;
        for (size_t slot = 0; slot < kSlots; ++slot) {
            if (occupied_[slot]) {
                colors.push_back(Sortable(std::bit_cast<Channels<uint8_t>>(keys_[slot])));
            }
        }
        std::ranges::sort(colors);
        return colors;
    }

  private:
    static constexpr size_t kSlots = 1024;

    static size_t SlotOf(uint32_t key) { return (key * 2654435761U) >> 22U; }

    std::array<uint32_t, kSlots> keys_{};
    std::array<bool, kSlots> occupied_{};
    size_t used_ = 0;
    uint32_t last_ = 0;
};

static_assert(kMostColors + 1 < 1024, "a search in the set always meets an empty slot");

template <typename Sample>
bool IsGray(std::span<const Channels<Sample>> row) {
    // Without a way out in the middle, for vector code.
    Sample difference = 0;
    for (const auto& [r, g, b, a] : row) {
        difference |= static_cast<Sample>((r ^ g) | (g ^ b));
    }
    return difference == 0;
}

/// Whether a gray row holds nothing but the least and the largest value.
template <typename Sample>
bool IsBlackAndWhite(std::span<const Channels<Sample>> row) {
    Sample others = 0;
    for (const auto& pixel : row) {
        // 0 and 1 alone for the two.
        others |= static_cast<Sample>(static_cast<Sample>(pixel[0] + 1) & ~Sample{1});
    }
    return others == 0;
}

template <typename Sample>
class TraitsFinder {
  public:
    void Look(std::span<const Channels<Sample>> row, bool isOpaque) {
        const bool isGray = IsGray(row);
        traits_.opaque = traits_.opaque && isOpaque;
        traits_.gray = traits_.gray && isGray;
        traits_.blackAndWhite = traits_.blackAndWhite && isOpaque && isGray && IsBlackAndWhite(row);
        if constexpr (sizeof(Sample) == 1) {
            if (fits_ && isGray && isOpaque) {
                for (const auto& pixel : row) {
                    grays_[pixel[0]] = true;
                }
            } else {
                fits_ = fits_ && std::ranges::all_of(row, [this](const auto& pixel) {
                            return colors_.Insert(pixel);
                        });
            }
        }
    }

    /// Looks only whether the pixels are opaque, when nothing else can be found out.
    bool IsSettled() const { return !traits_.gray && !fits_; }
    void LookAtAlpha(bool isOpaque) { traits_.opaque = traits_.opaque && isOpaque; }

    PictureTraits Take() {
        for (size_t gray = 0; gray < grays_.size(); ++gray) {
            const auto value = static_cast<uint8_t>(gray);
            fits_ = fits_ && (!grays_[gray] || colors_.Insert({value, value, value, 255}));
        }
        if (fits_) {
            traits_.palette = colors_.Sorted();
        }
        return std::move(traits_);
    }

  private:
    PictureTraits traits_;
    ColorSet colors_;
    std::array<bool, 256> grays_{};  ///< opaque ones, which are most frequent
    bool fits_ = sizeof(Sample) == 1;
};

template <typename Sample>
PictureTraits FindTraits(const Picture& picture, uint16_t leastAlpha) {
    TraitsFinder<Sample> finder;
    const auto width = static_cast<size_t>(picture.width);
    std::vector<Channels<Sample>> rounded(width);
    for (size_t first = 0; first < picture.pixels.size(); first += width) {
        const auto row = std::span(picture.pixels).subspan(first, width);
        const bool isOpaque = IsOpaque(row, leastAlpha);
        if (finder.IsSettled()) {
            finder.LookAtAlpha(isOpaque);
        } else {
            RoundPixels<Sample>(row, rounded);
            finder.Look(rounded, isOpaque);
        }
    }
    return finder.Take();
}

/// Opaque pixels with their alpha.
void AddAlpha(std::span<const RGB8> row, std::span<Channels<uint8_t>> out) {
    for (size_t x = 0; x < row.size(); ++x) {
        out[x] = {row[x][0], row[x][1], row[x][2], 255};
    }
}

/// The same for an opaque picture of 8 bits.
PictureTraits FindTraits(std::span<const RGB8> pixels, size_t width) {
    TraitsFinder<uint8_t> finder;
    std::vector<Channels<uint8_t>> row(width);
    for (size_t first = 0; first < pixels.size() && !finder.IsSettled(); first += width) {
        AddAlpha(pixels.subspan(first, width), row);
        finder.Look(row, true);
    }
    return finder.Take();
}

}  // namespace

PictureTraits TraitsOf(const Picture& picture, int depth) {
    if (!picture.rgb.empty()) {
        return FindTraits(picture.rgb, static_cast<size_t>(picture.width));
    }
    return depth == 16 ? FindTraits<uint16_t>(picture, kFullScale - 1)
                       : FindTraits<uint8_t>(picture, FromDepth8(255) - 128);
}

SampleRows::SampleRows(const Picture& picture, const SampleLayout& layout)
    : picture_(picture), layout_(layout) {
    const FileMetadata* metadata = picture.metadata.get();
    keepsLowerSamples_ = layout.depth == 16 && metadata != nullptr &&
                         metadata->width == picture.width && metadata->height == picture.height &&
                         metadata->lowerSamples.size() == picture.pixels.size() * 4;
}

size_t SampleRows::RowSize() const {
    return static_cast<size_t>(picture_.width) * static_cast<size_t>(layout_.bands) *
           (layout_.depth == 16 ? 2 : 1);
}

void SampleRows::Fill(int32_t y, std::byte* out) const {
    const auto width = static_cast<size_t>(picture_.width);
    const size_t first = static_cast<size_t>(y) * width;
    auto* const bytes = reinterpret_cast<uint8_t*>(out);
    if (!picture_.rgb.empty()) {
        FillFromBytes(std::span(picture_.rgb).subspan(first, width), bytes);
        return;
    }
    std::span<const RGBA16> row = std::span(picture_.pixels).subspan(first, width);
    std::vector<RGBA16> overWhite;
    if (layout_.overWhite) {
        overWhite.assign(row.begin(), row.end());
        for (RGBA16& pixel : overWhite) {
            pixel = Composite(pixel, CompositionKind::Normal,
                              {kFullScale, kFullScale, kFullScale, kFullScale});
        }
        row = overWhite;
    }
    if (!layout_.palette.empty()) {
        std::vector<Channels<uint8_t>> rounded(width);
        RoundPixels<uint8_t>(row, rounded);
        FillIndices(rounded, bytes);
    } else if (layout_.depth == 16) {
        std::vector<Channels<uint16_t>> rounded(width);
        RoundPixels<uint16_t>(row, rounded);
        KeepLowerSamples(y, rounded);
        PickBands<uint16_t>(rounded, static_cast<size_t>(layout_.bands),
                            reinterpret_cast<uint16_t*>(out));
    } else {
        RoundToBytes(row, static_cast<size_t>(layout_.bands), bytes);
    }
}

void SampleRows::FillFromBytes(std::span<const RGB8> row, uint8_t* out) const {
    if (layout_.bands == 3) {
        std::memcpy(out, row.data(), row.size_bytes());
        return;
    }
    std::vector<Channels<uint8_t>> pixels(row.size());
    AddAlpha(row, pixels);
    if (layout_.palette.empty()) {
        PickBands<uint8_t>(pixels, static_cast<size_t>(layout_.bands), out);
    } else {
        FillIndices(pixels, out);
    }
}

void SampleRows::FillIndices(std::span<const std::array<uint8_t, 4>> row, uint8_t* out) const {
    std::optional<PaletteColor> last;
    uint8_t index = 0;
    for (const Channels<uint8_t>& pixel : row) {
        PaletteColor color = Sortable(pixel);
        if (layout_.palette.front()[0] == 255) {
            color[0] = 255;
        }
        if (color != last) {
            last = color;
            index = static_cast<uint8_t>(std::ranges::lower_bound(layout_.palette, color) -
                                         layout_.palette.begin());
        }
        *out++ = index;
    }
}

void SampleRows::KeepLowerSamples(int32_t y, std::span<std::array<uint16_t, 4>> row) const {
    if (!keepsLowerSamples_) {
        return;
    }
    const std::vector<bool>& lower = picture_.metadata->lowerSamples;
    size_t index = static_cast<size_t>(y) * row.size() * 4;
    for (auto& pixel : row) {
        for (uint16_t& sample : pixel) {
            if (HasLowerTwin(sample) && lower[index]) {
                --sample;
            }
            ++index;
        }
    }
}

}  // namespace imgbasic::host
