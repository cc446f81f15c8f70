#include <algorithm>
#include <iterator>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "fuzz/checks.h"
#include "host/image_file.h"
#include "host/openraster.h"
#include "host/openraster_archive.h"

namespace imgbasic {
namespace {

using namespace host;
using Bytes = std::vector<std::byte>;

constexpr int64_t kLargestArea = 4096;
constexpr size_t kMostLayers = 30;

Document Read(Bytes archive, Detail detail) {
    std::vector<std::string> notes;
    return ReadOpenRaster(ZipReader("archive", std::move(archive)), "archive", detail, notes);
}

Bytes Packed(std::span<const std::byte> stack) {
    const auto png = [](int32_t width, int32_t height, int bitDepth) {
        Picture picture{width, height, bitDepth, {}};
        for (int32_t i = 0; i < width * height; ++i) {
            const auto level = static_cast<uint16_t>(i * 256);
            picture.pixels.push_back({level, 512, 256, i == 0 ? uint16_t{0} : kFullScale});
        }
        std::vector<std::string> notes;
        return EncodeRaster(picture, RasterFormat::Png, "picture", notes);
    };
    static const Bytes deep = png(2, 1, 16);
    static const Bytes flat = png(5, 4, 8);
    ZipWriter archive("archive");
    archive.Add("stack.xml", {stack.begin(), stack.end()}, ZIP_CM_STORE);
    archive.Add("data/a.png", deep, ZIP_CM_STORE);
    archive.Add("data/b.png", flat, ZIP_CM_STORE);
    return archive.Finish();
}

bool IsSmall(const Item& item) {
    if (const auto* folder = std::get_if<Folder>(&item)) {
        return std::ranges::all_of(folder->items, IsSmall);
    }
    const PixelRect& place = std::get<Layer>(item).bounds;
    return place.Width() * place.Height() <= kLargestArea;
}

/// Whether reading the document takes no time.
bool IsSmallDocument(const Document& outline) {
    return int64_t{outline.width} * outline.height <= kLargestArea &&
           CountLayers(outline.items) <= kMostLayers && std::ranges::all_of(outline.items, IsSmall);
}

auto AttributesOf(const LayerAttributes& m) {
    return std::tie(m.name, m.opacity, m.kind, m.otherKind, m.clip, m.visible);
}

bool IsSame(const Item& a, const Item& b) {
    if (a.index() != b.index()) {
        return false;
    }
    if (const auto* layer = std::get_if<Layer>(&a)) {
        const auto& other = std::get<Layer>(b);
        return AttributesOf(*layer) == AttributesOf(other) && layer->pixels == other.pixels &&
               layer->bounds == other.bounds;
    }
    const auto& folder = std::get<Folder>(a);
    const auto& other = std::get<Folder>(b);
    return AttributesOf(folder) == AttributesOf(other) && folder.isolated == other.isolated &&
           std::ranges::equal(folder.items, other.items, IsSame);
}

void Change(std::vector<Item>& items, int32_t width, int32_t height) {
    for (Item& item : items) {
        if (auto* folder = std::get_if<Folder>(&item)) {
            Change(folder->items, width, height);
            continue;
        }
        auto& layer = std::get<Layer>(item);
        layer.name += "changed";
        layer.opacity = layer.opacity == 29 ? 100 : 29;
        layer.kind = CompositionKind::Screen;
        layer.otherKind.clear();
        layer.clip = !layer.clip;
        layer.pixels.back() = {3, 2, 1, kFullScale};
        layer.bounds = BoundsOf(layer.pixels, width, height);
    }
}

}  // namespace

bool ComesBack(const Document& document) {
    const Document again =
        Read(EncodeOpenRaster(document, document.bitDepth, "fuzz"), Detail::Everything);
    return again.width == document.width && again.height == document.height &&
           again.bitDepth == document.bitDepth &&
           std::ranges::equal(again.items, document.items, IsSame);
}

std::string CheckOpenRaster(std::span<const uint8_t> data) {
    const auto bytes = std::as_bytes(data);
    const bool isArchive = data.size() > 1 && data[0] == 'P' && data[1] == 'K';
    const Bytes archive(isArchive ? Bytes(bytes.begin(), bytes.end()) : Packed(bytes));
    Document document;
    try {
        if (!IsSmallDocument(Read(archive, Detail::Outline))) {
            return "";
        }
        document = Read(archive, Detail::Everything);
    } catch (const FileError&) {
        return "";
    }
    try {
        if (!ComesBack(document)) {
            return "something else comes back";
        }
        Change(document.items, document.width, document.height);
        return ComesBack(document) ? "" : "something else comes back after a change";
    } catch (const FileError& error) {
        if (isArchive) {
            return "";  // a part that is only copied may be damaged unseen until then
        }
        return std::string("cannot be written and read again: ") + error.what();
    }
}

}  // namespace imgbasic
