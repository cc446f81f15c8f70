#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic::host {

/// How a layer joins what is below it. The module knows the first three by their numbers and sees
/// all others as Normal.
enum class CompositionKind : uint32_t {
    Normal = 0,
    NormalAlpha = 1,  ///< source-over too; told apart only by the number
    Additive = 2,
    Multiply,
    Screen,
    Overlay,
    Darken,
    Lighten,
    ColorDodge,
    ColorBurn,
    HardLight,
    SoftLight,
    Difference,
    Hue,
    Saturation,
    Color,
    Luminosity,
    DestinationIn,
    DestinationOut,
    SourceAtop,
    DestinationAtop,
    Other,  ///< a file's own, which cannot be drawn and stands in as Normal
};

struct OpenRasterSource;
struct OpenRasterElement;

/// What layers and folders share.
struct LayerAttributes {
    std::string name{};    ///< UTF-8
    double opacity = 100;  ///< percent, 0 to 100
    CompositionKind kind = CompositionKind::Normal;
    std::string otherKind{};  ///< the file's name for CompositionKind::Other
    bool clip = false;        ///< limited to the coverage of the nearest unclipped one below
    bool visible = true;

    /// These alone, of a layer or folder.
    LayerAttributes& Attributes() { return *this; }
    const LayerAttributes& Attributes() const { return *this; }
};

struct Layer : LayerAttributes {
    std::vector<RGBA16> pixels;  ///< the whole image, the document's width x height
    PixelRect bounds;            ///< what holds pixels that are not fully zero; may be empty
    /// Where it stood in the document's source; null for a layer that is new.
    std::shared_ptr<const OpenRasterElement> origin;
};

struct Folder;
using Item = std::variant<Layer, Folder>;

/// Composes what it holds, then joins it with its own opacity and kind.
struct Folder : LayerAttributes {
    /// Its members see nothing of what is below the folder. One that is not isolated counts as
    /// such all the same when its opacity or kind or clipping needs its picture by itself.
    bool isolated = true;
    std::vector<Item> items;  ///< 0 on top
    std::shared_ptr<const OpenRasterElement> origin;
};

struct FileMetadata;

/// A layered image, held by value.
struct Document {
    int32_t width = 0;
    int32_t height = 0;
    int bitDepth = 8;         ///< bits a channel of the file that it came from, 8 or 16
    std::vector<Item> items;  ///< 0 on top
    /// The file that it came from, as far as the rest of the document does not tell it.
    std::shared_ptr<const OpenRasterSource> source{};
    /// What the file held beside the picture; null for a file with layers.
    std::shared_ptr<const FileMetadata> metadata{};
    /// What the names of files of its format end in, such as ".png"; empty for formats that are
    /// only read.
    std::string extension{};
};

/// The layers among the items, those in folders at any depth included.
size_t CountLayers(const std::vector<Item>& items);

/// The layer whose pixels are what the document shows; null when they have to be composed.
const Layer* WholePicture(const Document& document);

/// Whether all pixels are at least that opaque.
bool IsOpaque(std::span<const RGBA16> pixels, uint16_t leastAlpha = kFullScale);

/// The smallest rectangle outside which every pixel is (0, 0, 0, 0).
PixelRect BoundsOf(const std::vector<RGBA16>& pixels, int32_t width, int32_t height);

}  // namespace imgbasic::host
