#include <glib.h>
#include <zip.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <pugixml.hpp>
#include <span>
#include <sstream>
#include <string_view>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/openraster.h"
#include "host/raster_file.h"

namespace imgbasic::host {
namespace {

/// `name` as XML can hold it: what is no UTF-8, and most control characters, become U+FFFD.
std::string XmlText(const std::string& name) {
    const std::unique_ptr<char, void (*)(void*)> valid(
        g_utf8_make_valid(name.data(), static_cast<gssize>(name.size())), g_free);
    std::string text;
    for (const char* c = valid.get(); *c != '\0'; ++c) {
        const bool forbidden = static_cast<unsigned char>(*c) < 0x20 && !std::strchr("\t\n\r", *c);
        text += forbidden ? "\xEF\xBF\xBD" : std::string(1, *c);
    }
    return text;
}

/// An archive that grows in memory.
class ZipWriter {
  public:
    explicit ZipWriter(std::string name) : name_(std::move(name)) {
        zip_error_t error;
        zip_error_init(&error);
        bytes_.reset(zip_source_buffer_create(nullptr, 0, 0, &error));
        if (bytes_) {
            zip_source_keep(bytes_.get());
            archive_.reset(zip_open_from_source(bytes_.get(), ZIP_TRUNCATE, &error));
            if (!archive_) {
                zip_source_free(bytes_.get());
            }
        }
        zip_error_fini(&error);
        Require(archive_ != nullptr);
    }

    void Add(const std::string& entry, std::vector<std::byte> content, int32_t method) {
        contents_.push_back(std::move(content));
        const std::vector<std::byte>& kept = contents_.back();
        zip_source_t* const source = zip_source_buffer(archive_.get(), kept.data(), kept.size(), 0);
        Require(source != nullptr);
        const zip_int64_t added =
            zip_file_add(archive_.get(), entry.c_str(), source, ZIP_FL_ENC_UTF_8);
        if (added < 0) {
            zip_source_free(source);
        }
        Require(added >= 0);
        const auto index = static_cast<zip_uint64_t>(added);
        Require(zip_set_file_compression(archive_.get(), index, method, 0) == 0);
        // A fixed time, 1980-01-01, keeps the archive the same from run to run.
        constexpr zip_uint16_t kFirstDay = (1 << 5) | 1;
        Require(zip_file_set_dostime(archive_.get(), index, 0, kFirstDay, 0) == 0);
    }

    /// The finished archive; at most once.
    std::vector<std::byte> Finish() {
        Require(zip_close(archive_.get()) == 0);
        (void)archive_.release();
        zip_stat_t stat;
        Require(zip_source_stat(bytes_.get(), &stat) == 0 && zip_source_open(bytes_.get()) == 0);
        std::vector<std::byte> archive(stat.size);
        const zip_int64_t count = zip_source_read(bytes_.get(), archive.data(), archive.size());
        zip_source_close(bytes_.get());
        Require(count >= 0 && static_cast<size_t>(count) == archive.size());
        return archive;
    }

  private:
    void Require(bool done) const {
        if (!done) {
            throw FileError(name_ +
                            ": cannot be put together as OpenRaster; try again with more "
                            "free memory");
        }
    }

    struct Free {
        void operator()(zip_source_t* source) const { zip_source_free(source); }
        void operator()(zip_t* archive) const { zip_discard(archive); }
    };

    std::string name_;
    std::vector<std::vector<std::byte>> contents_;  ///< read when the archive is closed
    std::unique_ptr<zip_source_t, Free> bytes_;
    std::unique_ptr<zip_t, Free> archive_;
};

std::vector<std::byte> BytesOf(std::string_view text) {
    const std::span bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

/// Writes a document's stack, naming the layers' files as it goes.
class StackWriter {
  public:
    StackWriter(const Document& document, ZipWriter& zip, const std::string& name)
        : document_(document), zip_(zip), name_(name) {}

    void Write(pugi::xml_node stack, const Item& item) {
        std::visit([&](const auto& member) { WriteMember(stack, member); }, item);
    }

  private:
    void WriteMember(pugi::xml_node stack, const Layer& layer) {
        const std::string entry = "data/layer" + std::to_string(count_++) + ".png";
        pugi::xml_node node = stack.append_child("layer");
        node.append_attribute("src") = entry.c_str();
        PixelRect bounds = ClipToImage(layer.bounds, document_.width, document_.height);
        if (bounds.IsEmpty()) {
            // A picture file holds at least one pixel.
            bounds = {0, 0, 1, 1};
        }
        node.append_attribute("x") = bounds.left;
        node.append_attribute("y") = bounds.top;
        WriteAttributes(node, layer);
        zip_.Add(entry, EncodeRaster(Cropped(layer, bounds), RasterFormat::Png, name_, notes_),
                 ZIP_CM_STORE);
    }

    void WriteMember(pugi::xml_node stack, const Folder& folder) {
        pugi::xml_node node = stack.append_child("stack");
        node.append_attribute("isolation") = "isolate";
        WriteAttributes(node, folder);
        for (const Layer& layer : folder.layers) {
            WriteMember(node, layer);
        }
    }

    template <typename LayerOrFolder>
    static void WriteAttributes(pugi::xml_node node, const LayerOrFolder& member) {
        const uint32_t percent = std::min(member.opacity, 100U);
        const std::string digits = std::to_string(100 + percent).substr(1);
        node.append_attribute("name") = XmlText(member.name).c_str();
        node.append_attribute("opacity") = percent == 100 ? "1.0" : ("0." + digits).c_str();
        node.append_attribute("visibility") = member.visible ? "visible" : "hidden";
        node.append_attribute("composite-op") =
            member.kind == CompositionKind::Additive ? "svg:plus" : "svg:src-over";
        if (member.clip) {
            node.append_attribute("alpha-preserve") = "true";
        }
    }

    Picture Cropped(const Layer& layer, const PixelRect& bounds) const {
        Picture picture{
            static_cast<int32_t>(bounds.Width()), static_cast<int32_t>(bounds.Height()), 16, {}};
        picture.pixels.reserve(PixelCount(picture.width, picture.height));
        for (int32_t y = bounds.top; y < bounds.bottom; ++y) {
            const auto row = layer.pixels.begin() + int64_t{y} * document_.width;
            picture.pixels.insert(picture.pixels.end(), row + bounds.left, row + bounds.right);
        }
        return picture;
    }

    const Document& document_;
    ZipWriter& zip_;
    const std::string& name_;
    std::vector<std::string> notes_;  ///< stays empty: PNG keeps everything
    int count_ = 0;
};

}  // namespace

std::vector<std::byte> EncodeOpenRaster(const Document& document, int bitDepth,
                                        const std::string& name) {
    ZipWriter zip(name);
    // First and as it is, so that the archive's kind shows in its first bytes.
    zip.Add("mimetype", BytesOf("image/openraster"), ZIP_CM_STORE);

    pugi::xml_document xml;
    pugi::xml_node image = xml.append_child("image");
    image.append_attribute("version") = "0.0.5";
    image.append_attribute("w") = document.width;
    image.append_attribute("h") = document.height;
    image.append_attribute(kOpenRasterDepthAttribute) = bitDepth;
    pugi::xml_node stack = image.append_child("stack");
    StackWriter layers(document, zip, name);
    for (const Item& item : document.items) {
        layers.Write(stack, item);
    }
    std::ostringstream text;
    xml.save(text, " ");
    zip.Add("stack.xml", BytesOf(text.view()), ZIP_CM_DEFLATE);

    const Picture flat{document.width, document.height, bitDepth, Flatten(document)};
    std::vector<std::string> notes;
    zip.Add("mergedimage.png", EncodeRaster(flat, RasterFormat::Png, name, notes), ZIP_CM_STORE);
    zip.Add("Thumbnails/thumbnail.png", EncodeThumbnail(flat, name), ZIP_CM_STORE);
    return zip.Finish();
}

}  // namespace imgbasic::host
