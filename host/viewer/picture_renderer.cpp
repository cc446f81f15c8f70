#include "host/viewer/picture_renderer.h"

#include <algorithm>
#include <cmath>

#include "host/sample_depth.h"

namespace imgbasic::viewer {
namespace {

constexpr uint32_t kLightCell = 0xFF;
constexpr uint32_t kDarkCell = 0xCC;

/// Of the pixels that one on the screen stands for, at most so many in each direction are looked
/// at: a mean of these is smooth enough, and drawing takes no longer for a larger picture.
constexpr int kMostTaps = 4;

struct Taps {
    int count = 0;  ///< 0 outside the picture
    int32_t at[kMostTaps]{};
};

/// The picture's columns (or rows) to look at for each of the window's from `begin` to `end`.
std::vector<Taps> TapsFor(int32_t begin, int32_t end, double zoom, double origin, int32_t size) {
    std::vector<Taps> all;
    const int count = std::clamp(static_cast<int>(std::ceil(1 / zoom)), 1, kMostTaps);
    for (int32_t x = begin; x < end; ++x) {
        Taps& taps = all.emplace_back();
        const double middle = (x + 0.5 - origin) / zoom;
        if (middle < 0 || middle >= size) {
            continue;
        }
        taps.count = count;
        for (int i = 0; i < count; ++i) {
            const double share = (i + 0.5) / count;
            const double point = std::floor((x + share - origin) / zoom);
            taps.at[i] = static_cast<int32_t>(std::clamp(point, 0.0, size - 1.0));
        }
    }
    return all;
}

struct Sum {
    uint32_t r = 0;
    uint32_t g = 0;
    uint32_t b = 0;
    uint32_t count = 0;

    void Add(const RGBA16& pixel, uint32_t cell) {
        const auto over = [&](uint32_t value) {
            const uint32_t mixed = value * pixel.a + cell * 256 * (uint32_t{kFullScale} - pixel.a);
            return uint32_t{host::ToDepth8(static_cast<uint16_t>(mixed / kFullScale))};
        };
        r += over(pixel.r);
        g += over(pixel.g);
        b += over(pixel.b);
        ++count;
    }
    uint32_t Color() const { return (r / count) << 16 | (g / count) << 8 | b / count; }
};

}  // namespace

void RenderPicture(const FlatPicture& picture, const PicturePlace& place, const PixelRect& area,
                   int cell, uint32_t around, std::span<uint32_t> out) {
    const std::vector<Taps> columns =
        TapsFor(area.left, area.right, place.zoom, place.left, picture.width);
    const std::vector<Taps> rows =
        TapsFor(area.top, area.bottom, place.zoom, place.top, picture.height);
    const auto cellOf = [cell](int32_t x, double origin) {
        return static_cast<int64_t>(std::floor((x - origin) / cell));
    };
    auto next = out.begin();
    for (size_t y = 0; y < rows.size(); ++y) {
        const int64_t cellY = cellOf(area.top + static_cast<int32_t>(y), place.top);
        for (size_t x = 0; x < columns.size(); ++x) {
            const int64_t cellX = cellOf(area.left + static_cast<int32_t>(x), place.left);
            Sum sum;
            for (int i = 0; i < rows[y].count; ++i) {
                const auto row = picture.pixels.begin() + int64_t{rows[y].at[i]} * picture.width;
                for (int j = 0; j < columns[x].count; ++j) {
                    sum.Add(row[columns[x].at[j]],
                            (cellX + cellY) % 2 == 0 ? kLightCell : kDarkCell);
                }
            }
            *next++ = sum.count != 0 ? sum.Color() : around;
        }
    }
}

}  // namespace imgbasic::viewer
