#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/document.h"
#include "host/openraster_archive.h"

namespace imgbasic::host {

/// The attribute of the image element that tells the document's depth where the depths of the
/// layers' files do not.
constexpr char kOpenRasterDepthAttribute[] = "imgbasic-bit-depth";

/// A file that a document was read from, as it was.
struct OpenRasterSource {
    explicit OpenRasterSource(ZipReader reader) : archive(std::move(reader)) {}

    ZipReader archive;
    pugi::xml_document stack;  ///< everything in it, blanks and comments included
    int32_t width = 0;
    int32_t height = 0;
};

/// One of its layer or stack elements; of a stack only the node.
struct OpenRasterElement {
    pugi::xml_node node;
    std::shared_ptr<const OpenRasterSource> source;  ///< owns the node
    PixelRect place{};                               ///< of the layer's picture
    bool isDeep = false;                             ///< the picture has 16 bits a channel
    uint64_t fingerprint = 0;                        ///< of the pixels that were read
    bool holdsOutside = false;  ///< pixels that are not fully zero, outside the image
};

/// The attribute as a number, `absent` without it; nothing when it is no finite number.
template <typename Number>
std::optional<Number> NumberOf(pugi::xml_attribute attribute, Number absent) {
    if (!attribute) {
        return absent;
    }
    const char* const text = attribute.value();
    const char* const end = text + std::strlen(text);
    Number number{};
    const auto [rest, error] = std::from_chars(text, end, number);
    const bool isNumber = error == std::errc{} && rest == end;
    return isNumber && std::isfinite(static_cast<double>(number)) ? std::optional(number)
                                                                  : std::nullopt;
}

bool IsElement(pugi::xml_node node, std::string_view name);

/// The element's attributes; nothing when its opacity is no number.
std::optional<LayerAttributes> AttributesIn(pugi::xml_node node);

/// Whether a stack element isolates what it holds.
bool IsIsolated(pugi::xml_node stack);

/// Makes the element say what `member` does. Attributes that do already stay as they are; a new
/// element gets all that are usual.
void StoreAttributes(pugi::xml_node node, bool isNew, const LayerAttributes& member);

/// Sets the attribute when it has another value or is not there.
void StoreAttribute(pugi::xml_node node, const char* name, const std::string& value);

/// A number that pixels with any difference practically never share; pixels that differ in one
/// place never do.
uint64_t Fingerprint(const std::vector<RGBA16>& pixels);

}  // namespace imgbasic::host
