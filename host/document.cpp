#include "host/document.h"

#include <algorithm>
#include <bit>

namespace imgbasic::host {

size_t CountLayers(const std::vector<Item>& items) {
    size_t count = 0;
    for (const Item& item : items) {
        const auto* folder = std::get_if<Folder>(&item);
        count += folder != nullptr ? CountLayers(folder->items) : 1;
    }
    return count;
}

const Layer* WholePicture(const Document& document) {
    const Layer* const layer =
        document.items.size() == 1 ? std::get_if<Layer>(&document.items.front()) : nullptr;
    const bool isWhole = layer != nullptr && layer->visible && layer->opacity == 100 &&
                         layer->kind <= CompositionKind::NormalAlpha;
    return isWhole ? layer : nullptr;
}

bool IsOpaque(std::span<const RGBA16> pixels, uint16_t leastAlpha) {
    // Whole pixels joined bit by bit make faster code than a look at each alpha; no alpha is less
    // than what it has in common with the others. That mostly settles it.
    uint64_t common = ~uint64_t{0};
    for (const RGBA16& pixel : pixels) {
        common &= std::bit_cast<uint64_t>(pixel);
    }
    if (std::bit_cast<RGBA16>(common).a >= leastAlpha) {
        return true;
    }
    bool isOpaque = true;
    for (const RGBA16& pixel : pixels) {
        isOpaque &= pixel.a >= leastAlpha;
    }
    return isOpaque;
}

PixelRect BoundsOf(const std::vector<RGBA16>& pixels, int32_t width, int32_t height) {
    const auto holds = [](const RGBA16& pixel) { return pixel != RGBA16{}; };
    PixelRect bounds{width, height, 0, 0};
    for (int32_t y = 0; y < height; ++y) {
        const auto row = pixels.begin() + int64_t{y} * width;
        const auto first = std::find_if(row, row + width, holds);
        if (first == row + width) {
            continue;
        }
        auto last = row + width - 1;
        // Up to the right edge found so far nothing can widen the rectangle.
        while (last - row >= bounds.right && !holds(*last)) {
            --last;
        }
        bounds.left = std::min(bounds.left, static_cast<int32_t>(first - row));
        bounds.right = std::max(bounds.right, static_cast<int32_t>(last - row) + 1);
        bounds.top = std::min(bounds.top, y);
        bounds.bottom = y + 1;
    }
    return bounds.IsEmpty() ? PixelRect{} : bounds;
}

}  // namespace imgbasic::host
