#include "host/cli/strip_run.h"

#include <malloc.h>

#include <algorithm>
#include <span>
#include <utility>

#include "host/layer_run.h"

namespace imgbasic::host {
namespace {

constexpr std::string_view kPointFilters[] = {"gray", "mono", "nega"};

/// Bytes of a strip: with its result it fits the cache of a core.
constexpr int kStripSize = 1 << 18U;

/// No strip is larger: 16 rows of the widest picture.
constexpr int kKeptSize = 1 << 23U;

/// Keeps the memory of one strip for the next: the system's, which has to be cleared, costs more
/// than the filter.
void KeepMemoryOfStrips() {
    static const bool kept =
        mallopt(M_MMAP_THRESHOLD, kKeptSize) != 0 && mallopt(M_TRIM_THRESHOLD, 2 * kKeptSize) != 0;
    (void)kept;
}

/// The outcome of a run over rows as a layer like another one. It holds as many pixels, or the
/// run failed.
RunOutcome RunAsLayer(const Module& module, std::vector<RGBA16> rows, int32_t width,
                      const Layer& like, const RunRequest& request) {
    const size_t count = rows.size();
    const auto height = static_cast<int32_t>(count / static_cast<size_t>(width));
    Layer part;
    part.Attributes() = like.Attributes();
    part.origin = like.origin;
    part.bounds = {0, 0, width, height};
    part.pixels = std::move(rows);
    Document strip{width, height, 16, {}};
    strip.items.emplace_back(std::move(part));
    RunOutcome outcome = RunFilter(module, std::move(strip), request);
    const std::vector<Item>& items = outcome.document.items;
    const Layer* const made = items.size() == 1 ? std::get_if<Layer>(&items.front()) : nullptr;
    if (outcome.status == RunStatus::Done && (made == nullptr || made->pixels.size() != count)) {
        return {.status = RunStatus::Failed,
                .fault = request.filter + " made something else of a layer than a layer"};
    }
    return outcome;
}

}  // namespace

bool WorksByPixel(std::string_view filter) {
    return std::ranges::find(kPointFilters, filter) != std::end(kPointFilters);
}

double RunOnRows(const Module& module, std::vector<RGBA16>& rows, int32_t width,
                 const RunRequest& request) {
    KeepMemoryOfStrips();
    RunOutcome outcome = RunAsLayer(module, std::move(rows), width, Layer{}, request);
    if (outcome.status == RunStatus::Failed || outcome.status == RunStatus::Cancelled) {
        throw RunError(outcome.status == RunStatus::Failed ? outcome.fault : "cancelled");
    }
    rows = std::move(std::get<Layer>(outcome.document.items.front()).pixels);
    return outcome.milliseconds;
}

bool CanRunInStrips(const Document& document, const RunRequest& request) {
    const Layer* const layer = WorksByPixel(request.filter) ? WholePicture(document) : nullptr;
    return layer != nullptr && layer->bounds == PixelRect{0, 0, document.width, document.height};
}

RunOutcome RunInStrips(const Module& module, Document&& document, const RunRequest& request) {
    KeepMemoryOfStrips();
    Document result = std::move(document);
    auto& layer = std::get<Layer>(result.items.front());
    const auto width = static_cast<size_t>(result.width);
    const size_t strip = std::max<size_t>(kStripSize / (width * sizeof(RGBA16)), 1) * width;
    RunOutcome outcome;
    for (size_t first = 0; first < layer.pixels.size(); first += strip) {
        const auto rows =
            std::span(layer.pixels).subspan(first, std::min(strip, layer.pixels.size() - first));
        outcome = RunAsLayer(module, {rows.begin(), rows.end()}, result.width, layer, request);
        if (outcome.status != RunStatus::Done) {
            break;
        }
        const auto& part = std::get<Layer>(outcome.document.items.front());
        std::ranges::copy(part.pixels, rows.begin());
        if (first + rows.size() == layer.pixels.size()) {
            layer.Attributes() = part.Attributes();
            layer.origin = part.origin;
        }
    }
    layer.bounds = BoundsOf(layer.pixels, result.width, result.height);
    outcome.document = std::move(result);
    return outcome;
}

}  // namespace imgbasic::host
