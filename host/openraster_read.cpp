#include <zip.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <pugixml.hpp>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/memory_limit.h"
#include "host/openraster.h"
#include "host/raster_file.h"

namespace imgbasic::host {
namespace {

/// More is no stack of layers that a person made, whatever the archive declares.
constexpr size_t kLargestStackXml = size_t{16} << 20;
/// The same for a layer's file; the picture in it is limited by the memory besides.
constexpr size_t kLargestLayerFile = size_t{1} << 30;
constexpr int kDeepestStack = 64;

struct Close {
    void operator()(zip_t* archive) const { zip_discard(archive); }
    void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};

class Reader {
  public:
    Reader(const std::string& path, std::vector<std::string>& notes)
        : path_(path), notes_(notes), archive_(zip_open(path.c_str(), ZIP_RDONLY, nullptr)) {
        if (!archive_) {
            Fail("is a damaged or incomplete archive; get another copy of it");
        }
    }

    Document Read() {
        const std::vector<std::byte> text = Content("stack.xml", kLargestStackXml, path_);
        pugi::xml_document xml;
        if (!xml.load_buffer(text.data(), text.size())) {
            Fail("its stack.xml is no well-formed XML; get another copy of it");
        }
        const pugi::xml_node image = xml.child("image");
        const pugi::xml_node stack = image.child("stack");
        if (!stack) {
            Fail("its stack.xml describes no image; get another copy of it");
        }
        width_ = Size(image, "w");
        height_ = Size(image, "h");
        RequireMemory(
            path_, width_, height_,
            std::max(image.select_nodes("//layer | /image/stack/stack//stack").size(), size_t{1}));
        Document document{width_, height_, 8, ReadItems(stack, 0)};
        const std::string_view depth = image.attribute(kOpenRasterDepthAttribute).value();
        document.bitDepth = depth == "8" || (depth != "16" && !deepLayers_) ? 8 : 16;
        return document;
    }

  private:
    [[noreturn]] void Fail(const std::string& fault) const {
        throw FileError(path_ + ": " + fault);
    }

    /// The entry's bytes; `user` is who needs it, for errors.
    std::vector<std::byte> Content(const std::string& entry, size_t largest,
                                   const std::string& user) const {
        zip_stat_t stat;
        if (zip_stat(archive_.get(), entry.c_str(), 0, &stat) != 0) {
            throw FileError(user + ": the archive has no file \"" + entry +
                            "\"; get another copy of it");
        }
        if (stat.size > largest) {
            throw FileError(user + ": the file \"" + entry + "\" in the archive claims " +
                            std::to_string(stat.size >> 20) + " MiB, more than the " +
                            std::to_string(largest >> 20) + " that are read; save it anew");
        }
        const std::unique_ptr<zip_file_t, Close> file(
            zip_fopen_index(archive_.get(), stat.index, 0));
        std::vector<std::byte> content(stat.size);
        size_t count = 0;
        while (file && count < content.size()) {
            const zip_int64_t part =
                zip_fread(file.get(), content.data() + count, content.size() - count);
            if (part <= 0) {
                break;
            }
            count += static_cast<size_t>(part);
        }
        if (!file || count < content.size()) {
            throw FileError(user + ": the file \"" + entry +
                            "\" in the archive is damaged; get another copy of it");
        }
        return content;
    }

    template <typename Number>
    Number Attribute(pugi::xml_node node, const char* name, Number absent) const {
        const pugi::xml_attribute attribute = node.attribute(name);
        if (!attribute) {
            return absent;
        }
        const char* const text = attribute.value();
        const char* const end = text + std::strlen(text);
        Number number{};
        const auto [rest, error] = std::from_chars(text, end, number);
        if (error != std::errc{} || rest != end || !std::isfinite(static_cast<double>(number))) {
            Fail(std::string("its stack.xml gives the ") + node.name() + " \"" +
                 node.attribute("name").value() + "\" " + name + "=\"" + text +
                 "\", which is no usable number; save it anew");
        }
        return number;
    }

    int32_t Size(pugi::xml_node image, const char* name) const {
        const int32_t size = Attribute<int32_t>(image, name, 0);
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
            if (std::string_view(node.name()) == "layer") {
                items.emplace_back(ReadLayer(node));
            } else if (std::string_view(node.name()) == "stack") {
                items.emplace_back(depth == 0 ? Item(ReadFolder(node, depth))
                                              : Item(Joined(node, depth)));
            }
        }
        return items;
    }

    Folder ReadFolder(pugi::xml_node node, int depth) {
        Folder folder;
        ReadAttributes(node, folder);
        for (Item& item : ReadItems(node, depth + 1)) {
            folder.layers.push_back(std::get<Layer>(std::move(item)));
        }
        return folder;
    }

    /// A stack that is deeper than folders go, as the one layer that it looks like.
    Layer Joined(pugi::xml_node node, int depth) {
        Layer layer;
        ReadAttributes(node, layer);
        layer.pixels = Flatten({width_, height_, 16, ReadItems(node, depth + 1)});
        layer.bounds = BoundsOf(layer.pixels, width_, height_);
        notes_.push_back(path_ + ": the folder \"" + layer.name +
                         "\" lies inside another one and was joined into one layer");
        return layer;
    }

    Layer ReadLayer(pugi::xml_node node) {
        Layer layer;
        ReadAttributes(node, layer);
        const std::string source = node.attribute("src").value();
        const std::string user = path_ + ": layer \"" + layer.name + "\"";
        const std::vector<std::byte> file = Content(source, kLargestLayerFile, user);
        Picture picture =
            DecodeRaster(file, RasterFormat::Png, user + ", file \"" + source + "\"", notes_);
        deepLayers_ = deepLayers_ || picture.bitDepth == 16;
        layer.pixels = Placed(std::move(picture), Attribute<int32_t>(node, "x", 0),
                              Attribute<int32_t>(node, "y", 0));
        layer.bounds = BoundsOf(layer.pixels, width_, height_);
        return layer;
    }

    /// The image's pixels, empty but for `picture` at (x, y).
    std::vector<RGBA16> Placed(Picture picture, int64_t x, int64_t y) const {
        if (x == 0 && y == 0 && picture.width == width_ && picture.height == height_) {
            return std::move(picture.pixels);
        }
        std::vector<RGBA16> pixels(PixelCount(width_, height_));
        const int64_t left = std::max<int64_t>(x, 0);
        const int64_t right = std::min<int64_t>(x + picture.width, width_);
        const int64_t bottom = std::min<int64_t>(y + picture.height, height_);
        for (int64_t row = std::max<int64_t>(y, 0); row < bottom && left < right; ++row) {
            const auto source = picture.pixels.begin() + (row - y) * picture.width;
            std::copy(source + (left - x), source + (right - x),
                      pixels.begin() + row * width_ + left);
        }
        return pixels;
    }

    template <typename LayerOrFolder>
    void ReadAttributes(pugi::xml_node node, LayerOrFolder& member) {
        member.name = node.attribute("name").value();
        const double opacity = std::clamp(Attribute<double>(node, "opacity", 1.0), 0.0, 1.0);
        member.opacity = static_cast<uint32_t>(std::lround(opacity * 100));
        member.visible = std::string_view(node.attribute("visibility").value()) != "hidden";
        member.clip = std::string_view(node.attribute("alpha-preserve").value()) == "true";
        const std::string_view operation = node.attribute("composite-op").as_string("svg:src-over");
        if (operation == "svg:plus") {
            member.kind = CompositionKind::Additive;
        } else if (operation != "svg:src-over") {
            notes_.push_back(path_ + ": the " + node.name() + " \"" + member.name + "\" is " +
                             std::string(operation) + ", which is shown as normal");
        }
    }

    const std::string& path_;
    std::vector<std::string>& notes_;
    std::unique_ptr<zip_t, Close> archive_;
    int32_t width_ = 0;
    int32_t height_ = 0;
    bool deepLayers_ = false;  ///< some layer's file has 16 bits a channel
};

}  // namespace

Document ReadOpenRaster(const std::string& path, std::vector<std::string>& notes) {
    return Reader(path, notes).Read();
}

}  // namespace imgbasic::host
