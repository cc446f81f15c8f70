#include "host/viewer/edited_picture.h"

#include <algorithm>
#include <utility>

#include "host/image_file.h"
#include "host/pixel_room.h"

namespace imgbasic::viewer {

using host::Document;
using host::Folder;
using host::Item;
using host::Layer;

namespace {

/// Every state is a whole document; more of them would fill the memory with large pictures.
constexpr size_t kLongestPast = 16;

/// Gives the layers among the items a larger picture to lie in.
void Enlarge(std::vector<Item>& items, int32_t oldWidth, const Document& target) {
    for (Item& item : items) {
        if (auto* folder = std::get_if<Folder>(&item)) {
            Enlarge(folder->items, oldWidth, target);
            continue;
        }
        auto& layer = std::get<Layer>(item);
        std::vector<RGBA16> pixels = host::ZeroPixels(PixelCount(target.width, target.height));
        const PixelRect& bounds = layer.bounds;
        for (int32_t y = bounds.top; y < bounds.bottom; ++y) {
            std::copy_n(layer.pixels.begin() + int64_t{y} * oldWidth + bounds.left, bounds.Width(),
                        pixels.begin() + int64_t{y} * target.width + bounds.left);
        }
        layer.pixels = std::move(pixels);
        layer.origin = nullptr;  // its place in the file is not that in the picture any more
    }
}

}  // namespace

Document LoadAsLayers(const std::vector<std::filesystem::path>& paths,
                      std::vector<std::string>& notes) {
    std::vector<Document> documents;
    Document all;
    for (const std::filesystem::path& path : paths) {
        documents.push_back(host::LoadDocument(path, &notes));
        all.width = std::max(all.width, documents.back().width);
        all.height = std::max(all.height, documents.back().height);
        all.bitDepth = std::max(all.bitDepth, documents.back().bitDepth);
    }
    if (documents.size() == 1) {
        return std::move(documents.front());
    }
    for (Document& document : documents) {
        if (document.width != all.width || document.height != all.height) {
            Enlarge(document.items, document.width, all);
        }
        std::ranges::move(document.items, std::back_inserter(all.items));
    }
    return all;
}

/// A step of the past can be taken without memory, so that none is lost for want of it.
EditedPicture::EditedPicture() {
    past_.reserve(kLongestPast);
    future_.reserve(kLongestPast);
}

void EditedPicture::Open(Document document, std::filesystem::path path) {
    state_ = {std::move(document), ++lastRevision_};
    path_ = std::move(path);
    savedRevision_ = lastRevision_;
    past_.clear();
    future_.clear();
    current = {};
    acceptedLosses.clear();
}

void EditedPicture::Change(Document document) {
    if (past_.size() == kLongestPast) {
        past_.erase(past_.begin());
    }
    past_.push_back(std::exchange(state_, {std::move(document), ++lastRevision_}));
    future_.clear();
    KeepCurrent();
}

void EditedPicture::Undo() {
    Step(past_, future_);
}

void EditedPicture::Redo() {
    Step(future_, past_);
}

void EditedPicture::Step(std::vector<State>& from, std::vector<State>& to) {
    if (!from.empty()) {
        to.push_back(std::exchange(state_, std::move(from.back())));
        from.pop_back();
        KeepCurrent();
    }
}

/// The current layer is one that there is.
void EditedPicture::KeepCurrent() {
    const std::vector<host::LayerRow> rows = Rows();
    if (std::ranges::find(rows, current, &host::LayerRow::position) == rows.end()) {
        current = {};
    }
}

std::vector<std::string> EditedPicture::Save(const std::filesystem::path& path) {
    std::vector<std::string> notes = host::SaveDocument(state_.document, path, {.overwrite = true});
    path_ = path;
    savedRevision_ = state_.revision;
    return notes;
}

}  // namespace imgbasic::viewer
