#include "host/layer_rows.h"

namespace imgbasic::host {
namespace {

/// What lies in a folder; `next` is the place of its next layer, those of inner folders counted.
void AddMembers(Folder& folder, size_t depth, LayerPosition& next, std::vector<LayerRow>& rows) {
    for (Item& member : folder.items) {
        if (auto* inner = std::get_if<Folder>(&member)) {
            rows.push_back({inner, nullptr, {next.item}, depth});
            AddMembers(*inner, depth + 1, next, rows);
            continue;
        }
        auto& layer = std::get<Layer>(member);
        rows.push_back({&layer, &layer, next, depth});
        ++next.layer;
    }
}

}  // namespace

std::vector<LayerRow> RowsOf(Document& document) {
    std::vector<LayerRow> rows;
    LayerPosition position;
    for (Item& item : document.items) {
        if (auto* folder = std::get_if<Folder>(&item)) {
            rows.push_back({folder, nullptr, position, 0});
            LayerPosition next{position.item, 0};
            AddMembers(*folder, 1, next, rows);
        } else {
            auto& layer = std::get<Layer>(item);
            rows.push_back({&layer, &layer, position, 0});
        }
        ++position.item;
    }
    return rows;
}

}  // namespace imgbasic::host
