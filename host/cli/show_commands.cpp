#include "host/cli/show_commands.h"

#include <cmath>
#include <cstdio>

#include "host/cli/text_table.h"
#include "host/image_file.h"
#include "host/layer_rows.h"
#include "host/openraster.h"
#include "host/text_encoding.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

constexpr const char* kKindNames[] = {"normal", "normal", "additive"};

/// What is not the module's has the name that files give it.
std::string KindName(const LayerAttributes& member) {
    const auto kind = static_cast<size_t>(member.kind);
    return kind < std::size(kKindNames) ? kKindNames[kind] : CompositeOperation(member);
}

std::string PercentText(double percent) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g %%", percent);
    return text;
}

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

/// "2" of an item, "  2 0" of a layer in a folder, nothing of a folder in a folder.
std::string PositionText(const LayerRow& row) {
    if (row.depth > 0 && row.layer == nullptr) {
        return "";
    }
    const std::string item = std::to_string(row.position.item);
    return row.depth == 0 ? item : "  " + item + " " + std::to_string(row.position.layer);
}

TextRow TextOf(const LayerRow& row) {
    const LayerAttributes& member = *row.member;
    std::string remarks;
    if (member.clip) {
        remarks += "clipped ";
    }
    if (!member.visible) {
        remarks += "hidden";
    }
    return {PositionText(row),
            std::string(2 * row.depth, ' ') + member.name,
            row.layer != nullptr ? BoundsText(row.layer->bounds) : "folder",
            KindName(member),
            PercentText(member.opacity),
            remarks};
}

void Print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
}

/// What a file has beside its pixels, such as "EXIF, XMP, 300 x 300 dpi".
std::string MetadataText(const FileMetadata& metadata) {
    std::string text;
    const auto add = [&text](bool has, const std::string& what) {
        if (has) {
            text.append(text.empty() ? "" : ", ").append(what);
        }
    };
    add(!metadata.profile.empty(), "colour profile");
    add(!metadata.exif.empty(), "EXIF");
    add(!metadata.xmp.empty(), "XMP");
    add(!metadata.iptc.empty(), "IPTC");
    add(!metadata.texts.empty(), "text");
    const auto dotsPerInch = [](double resolution) {
        return std::to_string(std::lround(resolution * 25.4));
    };
    add(metadata.xResolution > 0,
        dotsPerInch(metadata.xResolution) + " x " + dotsPerInch(metadata.yResolution) + " dpi");
    return text;
}

void ShowHeader(const std::filesystem::path& path, const RasterHeader& header,
                const std::vector<std::string>& notes) {
    Print(InputName(path) + ": " + std::to_string(header.width) + " x " +
          std::to_string(header.height) + " pixels, " + std::to_string(header.bitDepth) +
          " bits a channel, " + header.format + "\n");
    if (const std::string metadata = MetadataText(*header.metadata); !metadata.empty()) {
        Print(InputName(path) + ": has " + metadata + "\n");
    }
    for (const std::string& note : notes) {
        Print(note + "\n");
    }
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
    if (const std::optional<RasterHeader> header = ReadHeader(path, notes)) {
        ShowHeader(path, *header, notes);
        return;
    }
    Document document = LoadDocument(path, &notes, Detail::Outline);
    Print(InputName(path) + ": " + std::to_string(document.width) + " x " +
          std::to_string(document.height) + " pixels, " + std::to_string(document.bitDepth) +
          " bits a channel\n");
    for (const std::string& note : notes) {
        Print(note + "\n");
    }
    std::vector<TextRow> rows{{"LAYER", "NAME", "PLACE", "KIND", "OPACITY", ""}};
    for (const LayerRow& row : RowsOf(document)) {
        rows.push_back(TextOf(row));
    }
    Print(AlignColumns(rows));
}

}  // namespace imgbasic::host
