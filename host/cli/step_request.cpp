#include "host/cli/step_request.h"

#include <optional>
#include <string_view>
#include <utility>

#include "host/cli/file_jobs.h"
#include "host/cli/stored_options.h"
#include "host/opaque_defaults.h"

namespace imgbasic::host {
namespace {

/// The last value of an option; nothing where it has none.
std::optional<int32_t> ValueAmong(std::span<const OptionValue> options, std::string_view name) {
    std::optional<int32_t> found;
    for (const auto& [option, value] : options) {
        found = option->name == name ? value : found;
    }
    return found;
}

LayerPosition CurrentPosition(const FilterCommand& command, const Document& document) {
    const LayerPosition position{command.layer.value_or(0), command.subLayer.value_or(-1)};
    const auto count = static_cast<int32_t>(document.items.size());
    if (position.item >= count) {
        throw JobError("has no layer " + std::to_string(position.item) + ", only " +
                       std::to_string(count) + "; `imgbasic info` lists them");
    }
    const std::string layer = "layer " + std::to_string(position.item);
    const auto* folder = std::get_if<Folder>(&document.items[static_cast<size_t>(position.item)]);
    if (position.layer >= 0 && folder == nullptr) {
        throw JobError(layer + " is no folder; leave out --sub-layer");
    }
    if (position.layer >= 0 && position.layer >= static_cast<int32_t>(CountLayers(folder->items))) {
        throw JobError(layer + " has no layer " + std::to_string(position.layer) +
                       " inside; `imgbasic info` lists them");
    }
    if (command.target == CurrentLayer && folder != nullptr && position.layer < 0) {
        throw JobError(layer + " is a folder; choose one of its layers with --sub-layer");
    }
    return position;
}

}  // namespace

std::string StepName(const std::vector<FilterCommand>& steps, size_t index) {
    return steps.size() == 1
               ? ""
               : "step " + std::to_string(index + 1) + " (" + steps[index].filter + "): ";
}

bool HasStoredRatio(std::span<const OptionValue> options) {
    return ValueAmong(options, "RatioSize") == 1;
}

FilterCommand WithFlagOptions(FilterCommand command) {
    const SizeRequest& size = command.size;
    if (command.layer && !command.target && FindOption(command.filter, "TargetType") != nullptr) {
        command.target = CurrentLayer;
    }
    const auto add = [&](const char* field, int32_t value) {
        command.options.push_back(Option(command.filter, field, value));
    };
    if (command.target) {
        add("TargetType", *command.target);
    }
    if (size.IsEmpty()) {
        return command;
    }
    // The module's percentages are whole numbers; others reach it as the size that they give.
    const auto width = size.ratio ? size.ratio->WholePercent() : std::nullopt;
    const auto height = size.ratioHeight ? size.ratioHeight->WholePercent() : width;
    add("RatioSize", width && height);
    if (width && height) {
        add("RatioWidth", *width);
        add("RatioHeight", *height);
    }
    return command;
}

FilterCommand Completed(FilterCommand command) {
    std::vector<OptionValue> stored;
    if (command.remembered) {
        stored = StoredOptions(command.filter);
    }
    if (command.size.IsEmpty() && HasStoredRatio(stored)) {
        command.size.ratio = Ratio{ValueAmong(stored, "RatioWidth").value_or(100), 100};
        command.size.ratioHeight = Ratio{ValueAmong(stored, "RatioHeight").value_or(100), 100};
    }
    if (command.filter == "scaling" && command.size.IsEmpty()) {
        throw UsageError("scaling needs a size: --ratio, --fit, --width or --height");
    }
    command = WithFlagOptions(std::move(command));
    if (!command.target) {
        command.target = ValueAmong(stored, "TargetType");
    }
    command.options.insert(command.options.begin(), stored.begin(), stored.end());
    return command;
}

PixelSize SizeAfter(const FilterCommand& command, const Document& document) {
    const PixelSize size{document.width, document.height};
    return command.size.IsEmpty() ? size : ScaledSize(command.size, size);
}

RunRequest RequestFor(const FilterCommand& command, const Document& document,
                      ImageProcess* reference) {
    RunRequest request{.filter = command.filter,
                       .current = CurrentPosition(command, document),
                       .drawColor = command.drawColor,
                       .backColor = command.backColor,
                       .reference = reference,
                       .options = OpaqueDefaults(command.filter, document)};
    request.options.insert(request.options.end(), command.options.begin(), command.options.end());
    if (!command.size.IsEmpty()) {
        const PixelSize size = SizeAfter(command, document);
        request.options.push_back(Option(command.filter, "newWidth", size.width));
        request.options.push_back(Option(command.filter, "newHeight", size.height));
    }
    return request;
}

}  // namespace imgbasic::host
