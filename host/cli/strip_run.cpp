#include "host/cli/strip_run.h"

#include <malloc.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace imgbasic::host {
namespace {

constexpr std::string_view kPointFilters[] = {"gray", "mono", "nega"};

/// Bytes of a strip: with its result it fits the cache of a core.
constexpr int kStripSize = 1 << 18U;

/// Keeps the memory of one strip for the next: the system's, which has to be cleared, costs more
/// than the filter.
void KeepMemoryOfStrips() {
    mallopt(M_MMAP_THRESHOLD, 4 * kStripSize);
    mallopt(M_TRIM_THRESHOLD, 8 * kStripSize);
}

/// The rows from `top` on, `height` of them, as a document with the same layer.
Document StripOf(const Document& document, const Layer& layer, int32_t top, int32_t height) {
    Layer part;
    part.Attributes() = layer.Attributes();
    part.origin = layer.origin;
    part.bounds = {0, 0, document.width, height};
    const auto first = layer.pixels.begin() + int64_t{top} * document.width;
    part.pixels.assign(first, first + int64_t{height} * document.width);
    Document strip{document.width, height, document.bitDepth, {}};
    strip.items.emplace_back(std::move(part));
    return strip;
}

}  // namespace

bool CanRunInStrips(const Document& document, const RunRequest& request) {
    const bool isPossible =
        std::ranges::find(kPointFilters, request.filter) != std::end(kPointFilters);
    const Layer* const layer = isPossible ? WholePicture(document) : nullptr;
    return layer != nullptr && layer->bounds == PixelRect{0, 0, document.width, document.height};
}

RunOutcome RunInStrips(const Module& module, Document&& document, const RunRequest& request) {
    KeepMemoryOfStrips();
    Document result = std::move(document);
    auto& layer = std::get<Layer>(result.items.front());
    const size_t rowSize = static_cast<size_t>(result.width) * sizeof(RGBA16);
    const auto rows = static_cast<int32_t>(std::max<size_t>(kStripSize / rowSize, 1));
    RunOutcome outcome;
    for (int32_t top = 0; top < result.height; top += rows) {
        const int32_t height = std::min(rows, result.height - top);
        outcome = RunFilter(module, StripOf(result, layer, top, height), request);
        if (outcome.status != RunStatus::Done) {
            break;
        }
        const auto& part = std::get<Layer>(outcome.document.items.front());
        std::ranges::copy(part.pixels, layer.pixels.begin() + int64_t{top} * result.width);
        if (top + height == result.height) {
            layer.Attributes() = part.Attributes();
            layer.origin = part.origin;
        }
    }
    layer.bounds = BoundsOf(layer.pixels, result.width, result.height);
    outcome.document = std::move(result);
    return outcome;
}

}  // namespace imgbasic::host
