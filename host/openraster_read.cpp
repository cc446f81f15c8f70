#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string_view>
#include <utility>

#include "host/image_file.h"
#include "host/layer_png.h"
#include "host/memory_limit.h"
#include "host/openraster.h"
#include "host/openraster_stack.h"
#include "host/raster_file.h"

namespace imgbasic::host {
namespace {

/// More is no stack of layers that a person made, whatever the archive declares.
constexpr uint64_t kLargestStackXml = uint64_t{16} << 20;
/// The same for what a picture's file holds beside the pixels.
constexpr uint64_t kLargestMetadata = uint64_t{16} << 20;
constexpr int kDeepestStack = 64;

/// A file claims more than is read.
[[noreturn]] void FailAsTooLarge(const std::string& user, const ZipReader::Entry& entry,
                                 const std::string& limit) {
    throw FileError(user + ": the file \"" + entry.name + "\" in the archive claims " +
                    std::to_string(entry.size >> 20) + " MiB, more than " + limit +
                    "; save it anew");
}

/// A rectangle at (x, y), as far as coordinates reach.
PixelRect RectAt(int32_t x, int32_t y, int32_t width, int32_t height) {
    const auto end = [](int32_t begin, int32_t length) {
        const int64_t sum = int64_t{begin} + length;
        return static_cast<int32_t>(std::min<int64_t>(sum, std::numeric_limits<int32_t>::max()));
    };
    return {x, y, end(x, width), end(y, height)};
}

class Reader {
  public:
    Reader(ZipReader archive, const std::string& name, Detail detail,
           std::vector<std::string>& notes)
        : name_(name),
          detail_(detail),
          notes_(notes),
          source_(std::make_shared<OpenRasterSource>(std::move(archive))) {}

    Document Read() {
        const ZipReader::Entry entry = source_->archive.Find("stack.xml", name_);
        if (entry.size > kLargestStackXml) {
            FailAsTooLarge(name_, entry, "the 16 that are read");
        }
        const std::vector<std::byte> text = source_->archive.Content(entry, name_);
        if (!source_->stack.load_buffer(
                text.data(), text.size(),
                pugi::parse_full | pugi::parse_ws_pcdata | pugi::parse_fragment)) {
            Fail("its stack.xml is no well-formed XML; get another copy of it");
        }
        const pugi::xml_node image = source_->stack.child("image");
        const pugi::xml_node stack = image.child("stack");
        if (!stack) {
            Fail("its stack.xml describes no image; get another copy of it");
        }
        source_->width = Size(image, "w");
        source_->height = Size(image, "h");
        const size_t layers = stack.select_nodes(".//layer").size();
        if (layers == 0) {
            Fail("has no layers; open it in a paint program and save it with one");
        }
        if (detail_ == Detail::Everything) {
            RequireMemory(
                name_, source_->width, source_->height,
                static_cast<double>(layers) * PictureBytes(source_->width, source_->height));
        }
        Document document{source_->width, source_->height, 8, ReadItems(stack, 0)};
        const std::string_view depth = image.attribute(kOpenRasterDepthAttribute).value();
        document.bitDepth = depth == "8" || (depth != "16" && !hasDeepLayers_) ? 8 : 16;
        if (detail_ == Detail::Everything) {
            document.source = source_;
        }
        document.extension = ".ora";
        return document;
    }

  private:
    [[noreturn]] void Fail(const std::string& fault) const {
        throw FileError(name_ + ": " + fault);
    }

    /// Fails because of an attribute that is to be a number.
    [[noreturn]] void FailAt(pugi::xml_node node, const char* name) const {
        Fail(std::string("its stack.xml gives the ") + node.name() + " \"" +
             node.attribute("name").value() + "\" " + name + "=\"" + node.attribute(name).value() +
             "\", which is no usable number; save it anew");
    }

    int32_t Integer(pugi::xml_node node, const char* name) const {
        const std::optional<int32_t> number = NumberOf(node.attribute(name), 0);
        if (!number) {
            FailAt(node, name);
        }
        return *number;
    }

    int32_t Size(pugi::xml_node image, const char* name) const {
        const int32_t size = Integer(image, name);
        if (size <= 0) {
            Fail(std::string("its stack.xml gives the image no usable size (") + name +
                 "); save it anew");
        }
        return size;
    }

    std::vector<Item> ReadItems(pugi::xml_node stack, int depth) {
        if (depth > kDeepestStack) {
            Fail("its folders are nested too deeply; save it with fewer levels");
        }
        std::vector<Item> items;
        for (const pugi::xml_node node : stack.children()) {
            if (IsElement(node, "layer")) {
                items.emplace_back(ReadLayer(node));
            } else if (IsElement(node, "stack")) {
                Folder folder;
                ReadAttributes(node, folder);
                folder.isolated = IsIsolated(node);
                folder.origin =
                    std::make_shared<OpenRasterElement>(OpenRasterElement{node, source_});
                folder.items = ReadItems(node, depth + 1);
                items.emplace_back(std::move(folder));
            } else if (IsElement(node, "text") || IsElement(node, "filter")) {
                notes_.push_back(name_ + ": the " + node.name() + " \"" +
                                 node.attribute("name").value() + "\" is kept but not drawn");
            }
        }
        return items;
    }

    void ReadAttributes(pugi::xml_node node, LayerAttributes& member) {
        const std::optional<LayerAttributes> read = AttributesIn(node);
        if (!read) {
            FailAt(node, "opacity");
        }
        member = *read;
    }

    Layer ReadLayer(pugi::xml_node node) {
        Layer layer;
        ReadAttributes(node, layer);
        const std::string user = name_ + ": layer \"" + layer.name + "\"";
        const ZipReader::Entry entry = source_->archive.Find(node.attribute("src").value(), user);
        const std::string file = user + ", file \"" + entry.name + "\"";
        const PngHeader header = Header(entry, file);
        hasDeepLayers_ = hasDeepLayers_ || header.bitDepth == 16;
        const int32_t x = Integer(node, "x");
        const int32_t y = Integer(node, "y");
        if (detail_ == Detail::Outline) {
            layer.bounds = RectAt(x, y, header.width, header.height);
            return layer;
        }
        Picture picture =
            DecodeRaster(source_->archive.Content(entry, user), RasterFormat::Png, file, notes_);
        OpenRasterElement origin{node, source_, RectAt(x, y, picture.width, picture.height)};
        origin.isDeep = header.bitDepth == 16;
        origin.holdsOutside = HoldsOutside(picture, origin.place);
        layer.pixels = Placed(std::move(picture), origin.place);
        layer.bounds = BoundsOf(layer.pixels, source_->width, source_->height);
        origin.fingerprint = Fingerprint(layer.pixels);
        layer.origin = std::make_shared<OpenRasterElement>(std::move(origin));
        return layer;
    }

    /// What a layer's file says about itself before any memory is taken for it.
    PngHeader Header(const ZipReader::Entry& entry, const std::string& file) const {
        const std::vector<std::byte> head = source_->archive.Head(entry, kPngHeaderSize, file);
        const std::optional<PngHeader> header = PngHeaderOf(head);
        if (!header) {
            throw FileError(file + ": is no PNG or damaged; get another copy of it");
        }
        RequireMemory(file, header->width, header->height,
                      PictureBytes(header->width, header->height));
        // Deflate adds less than a thousandth to what it cannot reduce.
        const auto area =
            static_cast<uint64_t>(header->width) * static_cast<uint64_t>(header->height);
        if (entry.size > area * 9 + kLargestMetadata) {
            FailAsTooLarge(file, entry,
                           std::to_string(header->width) + " x " + std::to_string(header->height) +
                               " pixels need");
        }
        return *header;
    }

    bool HoldsOutside(const Picture& picture, const PixelRect& place) const {
        const PixelRect inside = ClipToImage(place, source_->width, source_->height);
        if (inside == place) {
            return false;
        }
        const PixelRect held = BoundsOf(picture.pixels, picture.width, picture.height);
        return !held.IsEmpty() &&
               (inside.IsEmpty() || held.left < inside.left - place.left ||
                held.top < inside.top - place.top || held.right > inside.right - place.left ||
                held.bottom > inside.bottom - place.top);
    }

    /// The image's pixels, empty but for `picture` at its place.
    std::vector<RGBA16> Placed(Picture picture, const PixelRect& place) const {
        const int32_t width = source_->width;
        const int32_t height = source_->height;
        if (place == PixelRect{0, 0, width, height}) {
            return std::move(picture.pixels);
        }
        std::vector<RGBA16> pixels(PixelCount(width, height));
        const PixelRect inside = ClipToImage(place, width, height);
        for (int32_t y = inside.top; y < inside.bottom; ++y) {
            const int64_t first =
                (int64_t{y} - place.top) * picture.width + inside.left - place.left;
            std::copy_n(picture.pixels.begin() + first, inside.Width(),
                        pixels.begin() + int64_t{y} * width + inside.left);
        }
        return pixels;
    }

    const std::string& name_;
    Detail detail_;
    std::vector<std::string>& notes_;
    std::shared_ptr<OpenRasterSource> source_;
    bool hasDeepLayers_ = false;  ///< some layer's file has 16 bits a channel
};

}  // namespace

Document ReadOpenRaster(ZipReader archive, const std::string& name, Detail detail,
                        std::vector<std::string>& notes) {
    return Reader(std::move(archive), name, detail, notes).Read();
}

}  // namespace imgbasic::host
