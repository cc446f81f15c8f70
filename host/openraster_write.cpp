#include <algorithm>
#include <map>
#include <pugixml.hpp>
#include <set>
#include <span>
#include <sstream>
#include <string_view>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/layer_png.h"
#include "host/memory_limit.h"
#include "host/openraster.h"
#include "host/openraster_stack.h"
#include "host/raster_file.h"
#include "host/sample_depth.h"

namespace imgbasic::host {
namespace {

constexpr const char* kMimetype = "mimetype";
constexpr const char* kStack = "stack.xml";
constexpr const char* kMerged = "mergedimage.png";
constexpr const char* kThumbnail = "Thumbnails/thumbnail.png";

/// A layer's new picture, whose file has no name yet.
struct NewPicture {
    pugi::xml_node layer;
    std::vector<std::byte> png;
};

std::vector<std::byte> BytesOf(std::string_view text) {
    const std::span bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

bool IsBlank(pugi::xml_node node) {
    return node.type() == pugi::node_pcdata &&
           std::string_view(node.value()).find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool FitsDepth8(const Picture& picture) {
    return std::ranges::all_of(picture.pixels, [](const RGBA16& pixel) {
        const auto fits = [](uint16_t value) { return FromDepth8(ToDepth8(value)) == value; };
        return fits(pixel.r) && fits(pixel.g) && fits(pixel.b) && fits(pixel.a);
    });
}

PixelRect Union(const PixelRect& a, const PixelRect& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

/// Copies where `from`, which lies at `source`, and `to`, which lies at `target`, overlap.
void CopyOverlap(const std::vector<RGBA16>& from, const PixelRect& source, std::vector<RGBA16>& to,
                 const PixelRect& target) {
    const int32_t left = std::max(source.left, target.left);
    const int32_t right = std::min(source.right, target.right);
    const int32_t bottom = std::min(source.bottom, target.bottom);
    for (int32_t y = std::max(source.top, target.top); y < bottom && left < right; ++y) {
        std::copy_n(from.begin() + (y - source.top) * source.Width() + left - source.left,
                    right - left,
                    to.begin() + (y - target.top) * target.Width() + left - target.left);
    }
}

class Writer {
  public:
    Writer(const Document& document, int bitDepth, const std::string& name)
        : document_(document),
          bitDepth_(bitDepth),
          name_(name),
          image_{0, 0, document.width, document.height},
          zip_(name) {
        if (!document.source) {
            return;
        }
        std::set<std::string> layerFiles;
        for (const pugi::xpath_node& layer :
             document.source->stack.select_nodes("/image/stack//layer")) {
            layerFiles.insert(layer.node().attribute("src").value());
        }
        for (ZipReader::Entry& entry : document.source->archive.Entries()) {
            if (entry.isFirstOfName && !layerFiles.contains(entry.name) &&
                names_.insert(entry.name).second) {
                otherFiles_.push_back(std::move(entry));
            }
        }
    }

    std::vector<std::byte> Write() {
        // First and as it is, so that the archive's kind shows in its first bytes.
        zip_.Add(kMimetype, BytesOf("image/openraster"), ZIP_CM_STORE);
        WriteXml();
        const Picture flat{document_.width, document_.height, bitDepth_, Flatten(document_)};
        zip_.Add(kMerged, Png(flat), ZIP_CM_STORE);
        zip_.Add(kThumbnail, WithSrgbProfile(EncodeThumbnail(flat, name_)), ZIP_CM_STORE);
        for (const ZipReader::Entry& file : otherFiles_) {
            zip_.Copy(document_.source->archive, file, file.name);
        }
        return zip_.Finish();
    }

  private:
    /// A layer or folder's place in the source; null for one that is new or from elsewhere.
    const OpenRasterElement* OriginOf(const auto& member) const {
        const bool isKnown = member.origin && member.origin->source == document_.source;
        return isKnown ? member.origin.get() : nullptr;
    }

    void WriteXml() {
        pugi::xml_document xml;
        if (!document_.source) {
            pugi::xml_node image = xml.append_child("image");
            image.append_attribute("version") = "0.0.5";
            WriteImage(image);
            WriteStack(image.append_child("stack"), document_.items, {});
        } else {
            WriteAround(xml.root(), document_.source->stack.root(), "image",
                        [&](pugi::xml_node from) {
                            pugi::xml_node image = CopyElement(xml.root(), from);
                            WriteImage(image);
                            WriteAround(image, from, "stack", [&](pugi::xml_node stack) {
                                WriteStack(CopyElement(image, stack), document_.items, stack);
                            });
                        });
        }
        // After the files that stay, so that those keep their names.
        for (NewPicture& picture : pictures_) {
            const std::string file = FreeName(picture.layer.attribute("src").value());
            StoreAttribute(picture.layer, "src", file);
            zip_.Add(file, std::move(picture.png), ZIP_CM_STORE);
        }
        StoreDepth(xml.child("image"));
        std::ostringstream text;
        xml.save(text, " ", document_.source ? pugi::format_raw : pugi::format_indent,
                 pugi::encoding_utf8);
        zip_.Add(kStack, BytesOf(text.view()), ZIP_CM_DEFLATE);
    }

    /// Copies what `from` holds; the first element called `name` is left to `write`.
    template <typename Function>
    static void WriteAround(pugi::xml_node to, pugi::xml_node from, const char* name,
                            Function write) {
        const pugi::xml_node chosen = from.child(name);
        for (const pugi::xml_node node : from.children()) {
            if (node == chosen) {
                write(node);
            } else {
                Keep(to, node);
            }
        }
    }

    static void Keep(pugi::xml_node to, pugi::xml_node node) {
        pugi::xml_node copy = to.append_copy(node);
        if (node.type() == pugi::node_declaration && copy.attribute("encoding")) {
            copy.attribute("encoding") = "UTF-8";
        }
    }

    /// The element with its attributes but not what it holds.
    static pugi::xml_node CopyElement(pugi::xml_node to, pugi::xml_node from) {
        pugi::xml_node node = to.append_child(from.name());
        for (const pugi::xml_attribute attribute : from.attributes()) {
            node.append_copy(attribute);
        }
        return node;
    }

    void WriteImage(pugi::xml_node image) {
        StoreAttribute(image, "w", std::to_string(document_.width));
        StoreAttribute(image, "h", std::to_string(document_.height));
    }

    /// Tells the depth where the layers' files alone would mislead.
    void StoreDepth(pugi::xml_node image) const {
        if (image.attribute(kOpenRasterDepthAttribute) || hasDeepLayers_ != (bitDepth_ == 16)) {
            StoreAttribute(image, kOpenRasterDepthAttribute, std::to_string(bitDepth_));
        }
    }

    /// Writes the items among those nodes of their old stack, `from`, that are none.
    void WriteStack(pugi::xml_node to, const std::vector<Item>& items, pugi::xml_node from) {
        pugi::xml_node rest = from.first_child();
        const auto keepUntil = [&](pugi::xml_node end) {
            for (; rest && rest != end; rest = rest.next_sibling()) {
                if (!IsElement(rest, "layer") && !IsElement(rest, "stack")) {
                    Keep(to, rest);
                }
            }
        };
        for (const Item& item : items) {
            std::visit(
                [&](const auto& member) {
                    const OpenRasterElement* const origin = OriginOf(member);
                    if (origin != nullptr && origin->node.parent() == from) {
                        keepUntil(origin->node);
                        rest = rest.next_sibling();
                    } else if (IsBlank(rest)) {
                        // The indentation of those around it.
                        to.append_copy(rest);
                    }
                    WriteMember(to, member, origin);
                },
                item);
        }
        keepUntil({});
    }

    void WriteMember(pugi::xml_node stack, const Folder& folder, const OpenRasterElement* origin) {
        const pugi::xml_node from = origin != nullptr ? origin->node : pugi::xml_node();
        pugi::xml_node node = from ? CopyElement(stack, from) : stack.append_child("stack");
        if (!from || IsIsolated(from) != folder.isolated) {
            StoreAttribute(node, "isolation", folder.isolated ? "isolate" : "auto");
        }
        StoreAttributes(node, !from, folder);
        WriteStack(node, folder.items, from);
    }

    void WriteMember(pugi::xml_node stack, const Layer& layer, const OpenRasterElement* origin) {
        pugi::xml_node node =
            origin != nullptr ? stack.append_copy(origin->node) : stack.append_child("layer");
        if (origin != nullptr && IsUnchanged(layer, *origin)) {
            StoreAttribute(node, "src", CopiedFile(origin->node.attribute("src").value()));
            hasDeepLayers_ = hasDeepLayers_ || origin->isDeep;
        } else {
            WritePicture(node, layer, origin);
        }
        StoreAttributes(node, origin == nullptr, layer);
    }

    bool KeepsSize() const {
        return document_.source->width == document_.width &&
               document_.source->height == document_.height;
    }

    bool IsUnchanged(const Layer& layer, const OpenRasterElement& origin) const {
        return KeepsSize() && Fingerprint(layer.pixels) == origin.fingerprint;
    }

    /// Takes a layer's file over, once for all layers that share it; its name in the new archive.
    std::string CopiedFile(const std::string& source) {
        const auto [known, isNew] = copied_.try_emplace(source);
        if (isNew) {
            known->second = FreeName(source);
            const ZipReader& archive = document_.source->archive;
            zip_.Copy(archive, archive.Find(source, name_), known->second);
        }
        return known->second;
    }

    /// Of a layer that has changed, or is new. Its file covers at least what it did.
    void WritePicture(pugi::xml_node node, const Layer& layer, const OpenRasterElement* origin) {
        PixelRect place = ClipToImage(layer.bounds, document_.width, document_.height);
        const bool hasOldPlace = origin != nullptr && KeepsSize();
        if (hasOldPlace) {
            place = place.IsEmpty() ? origin->place : Union(place, origin->place);
        } else if (place.IsEmpty()) {
            // A picture file holds at least one pixel.
            place = {0, 0, 1, 1};
        }
        RequireMemory(name_, place.Width(), place.Height(),
                      2 * PictureBytes(place.Width(), place.Height()));
        Picture picture{
            static_cast<int32_t>(place.Width()), static_cast<int32_t>(place.Height()), 16, {}};
        picture.pixels.resize(PixelCount(picture.width, picture.height));
        if (hasOldPlace && origin->holdsOutside) {
            CopyOverlap(OldPixels(*origin), origin->place, picture.pixels, place);
        }
        CopyOverlap(layer.pixels, image_, picture.pixels, place);
        picture.bitDepth = bitDepth_ == 8 && FitsDepth8(picture) ? 8 : 16;
        hasDeepLayers_ = hasDeepLayers_ || picture.bitDepth == 16;
        pictures_.push_back({node, Png(picture)});
        if (origin == nullptr || NumberOf(node.attribute("x"), 0) != place.left) {
            StoreAttribute(node, "x", std::to_string(place.left));
        }
        if (origin == nullptr || NumberOf(node.attribute("y"), 0) != place.top) {
            StoreAttribute(node, "y", std::to_string(place.top));
        }
    }

    /// The pixels of the layer's file, those outside the image included.
    std::vector<RGBA16> OldPixels(const OpenRasterElement& origin) const {
        const ZipReader& archive = document_.source->archive;
        const std::string file = origin.node.attribute("src").value();
        std::vector<std::string> notes;
        return DecodeRaster(archive.Content(archive.Find(file, name_), name_), RasterFormat::Png,
                            name_ + ", file \"" + file + "\"", notes)
            .pixels;
    }

    std::vector<std::byte> Png(const Picture& picture) const {
        std::vector<std::string> notes;  // stays empty: PNG keeps everything
        return WithSrgbProfile(EncodeRaster(picture, RasterFormat::Png, name_, notes));
    }

    /// A name that no file of the new archive has; `wanted`, if that is one.
    std::string FreeName(std::string wanted) {
        while (wanted.empty() || !names_.insert(wanted).second) {
            wanted = "data/layer" + std::to_string(count_++) + ".png";
        }
        return wanted;
    }

    const Document& document_;
    int bitDepth_;
    const std::string& name_;
    PixelRect image_;
    ZipWriter zip_;
    std::set<std::string> names_{kMimetype, kStack, kMerged, kThumbnail};  ///< given away
    std::map<std::string, std::string> copied_;  ///< the old and new names of layers' files
    std::vector<ZipReader::Entry> otherFiles_;   ///< of the source, not ours to know
    std::vector<NewPicture> pictures_;
    bool hasDeepLayers_ = false;  ///< some layer's file has 16 bits a channel
    int count_ = 0;
};

}  // namespace

std::vector<std::byte> EncodeOpenRaster(const Document& document, int bitDepth,
                                        const std::string& name) {
    return Writer(document, bitDepth, name).Write();
}

}  // namespace imgbasic::host
