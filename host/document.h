#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

/// How a layer joins what is below it.
enum class CompositionKind : uint32_t {
    Normal = 0,
    NormalAlpha = 1,  ///< source-over too; told apart only by the number
    Additive = 2,
};

struct Layer {
    std::string name;        ///< UTF-8
    uint32_t opacity = 100;  ///< percent
    CompositionKind kind = CompositionKind::Normal;
    bool clip = false;  ///< limited to the coverage of the nearest unclipped layer below
    bool visible = true;
    std::vector<RGBA16> pixels;  ///< the whole image, the document's width x height
    PixelRect bounds;            ///< what holds pixels that are not fully zero; may be empty
};

/// One level of grouping; composes its layers, then joins them with its own opacity.
struct Folder {
    std::string name;
    uint32_t opacity = 100;
    CompositionKind kind = CompositionKind::Normal;
    bool clip = false;
    bool visible = true;
    std::vector<Layer> layers;  ///< 0 on top
};

using Item = std::variant<Layer, Folder>;

/// A layered image, held by value.
struct Document {
    int32_t width = 0;
    int32_t height = 0;
    int bitDepth = 8;         ///< bits a channel of the file that it came from, 8 or 16
    std::vector<Item> items;  ///< 0 on top
};

/// The smallest rectangle outside which every pixel is (0, 0, 0, 0).
PixelRect BoundsOf(const std::vector<RGBA16>& pixels, int32_t width, int32_t height);

}  // namespace imgbasic::host
