#include "host/cli/show_commands.h"

#include <cstdio>

#include "host/cli/text_table.h"
#include "host/image_file.h"
#include "host/shift_jis.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

constexpr const char* kKindNames[] = {"normal", "normal", "additive"};

std::string YesOrNo(bool value) {
    return value ? "yes" : "no";
}

std::string BoundsText(const PixelRect& bounds) {
    if (bounds.IsEmpty()) {
        return "empty";
    }
    return std::to_string(bounds.Width()) + " x " + std::to_string(bounds.Height()) + " at " +
           std::to_string(bounds.left) + ", " + std::to_string(bounds.top);
}

/// The columns that layers and folders share.
TextRow LayerRow(const std::string& position, const auto& layer, const std::string& content) {
    std::string remarks;
    if (layer.clip) {
        remarks += "clipped ";
    }
    if (!layer.visible) {
        remarks += "hidden";
    }
    return {position,
            layer.name,
            content,
            kKindNames[static_cast<uint32_t>(layer.kind)],
            std::to_string(layer.opacity) + " %",
            remarks};
}

void AddItem(std::vector<TextRow>& rows, size_t index, const Item& item) {
    const std::string position = std::to_string(index);
    if (const auto* layer = std::get_if<Layer>(&item)) {
        rows.push_back(LayerRow(position, *layer, BoundsText(layer->bounds)));
        return;
    }
    const auto& folder = std::get<Folder>(item);
    rows.push_back(LayerRow(position, folder, "folder"));
    for (size_t sub = 0; sub < folder.layers.size(); ++sub) {
        const Layer& layer = folder.layers[sub];
        rows.push_back(
            LayerRow("  " + position + " " + std::to_string(sub), layer, BoundsText(layer.bounds)));
        rows.back()[1].insert(0, "  ");
    }
}

void Print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
}

}  // namespace

void ListFilters(const Module& module) {
    std::vector<TextRow> rows{{"FILTER", "NAME", "CHANGES SIZE", "BATCH", "PHASES"}};
    for (const FilterRow& row : kFilterRows) {
        const char* filter = row.name;
        const char* name = module.getName(filter);
        if (name != nullptr) {
            rows.push_back({filter, ShiftJisToUtf8(name), YesOrNo(module.isSizeChange(filter)),
                            YesOrNo(module.isBatchEnable(filter)),
                            std::to_string(module.getPhase(filter))});
        }
    }
    Print(AlignColumns(rows));
}

void ShowFile(const std::filesystem::path& path) {
    std::vector<std::string> notes;
    const Document document = LoadDocument(path, &notes);
    Print(path.string() + ": " + std::to_string(document.width) + " x " +
          std::to_string(document.height) + " pixels, " + std::to_string(document.bitDepth) +
          " bits a channel\n");
    for (const std::string& note : notes) {
        Print(note + "\n");
    }
    std::vector<TextRow> rows{{"LAYER", "NAME", "HOLDS", "KIND", "OPACITY", ""}};
    for (size_t index = 0; index < document.items.size(); ++index) {
        AddItem(rows, index, document.items[index]);
    }
    Print(AlignColumns(rows));
}

}  // namespace imgbasic::host
