#include "host/layer_run.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/flatten.h"
#include "host/layer_name.h"
#include "host/pixel_room.h"

namespace imgbasic::host {
namespace {

/// What a filter answers through resultCode.
constexpr uint32_t kRemoveItem = 1;
constexpr uint32_t kNewLayer = 2;

/// And through resultKind.
constexpr uint32_t kPlainLayer = 1;

/// No filter puts more than four layers above one; without an end a faulty module would fill the
/// memory with them.
constexpr size_t kMostNewLayers = 16;

CompositionKind KindOf(uint32_t layerMode) {
    return layerMode <= static_cast<uint32_t>(CompositionKind::Additive)
               ? static_cast<CompositionKind>(layerMode)
               : CompositionKind::Normal;
}

/// The module's number for a kind; Normal's for one that it does not know.
uint32_t ModeOf(CompositionKind kind) {
    return static_cast<uint32_t>(kind <= CompositionKind::Additive ? kind
                                                                   : CompositionKind::Normal);
}

/// A layer's kind after the module answered `layerMode`. One that it does not know stays through
/// an answer of source-over: the channels of a multiplied layer are multiplied as a whole.
CompositionKind Answered(CompositionKind kind, uint32_t layerMode) {
    const CompositionKind answer = KindOf(layerMode);
    return kind > CompositionKind::Additive && answer != CompositionKind::Additive ? kind : answer;
}

/// A layer's opacity after the module, which knows whole percentages, answered one.
double Answered(double opacity, uint32_t percent) {
    return percent == static_cast<uint32_t>(std::lround(opacity)) ? opacity
                                                                  : std::min(percent, 100U);
}

/// A longer side is a module's fault, not something to find memory for.
constexpr uint32_t kLongestSide = 65535;

bool IsSize(uint32_t side) {
    return side >= 1 && side <= kLongestSide;
}

/// Whether the object works on the merged picture, of which a single plain layer remains. "nega"
/// does not announce that by its answers.
bool WorksOnMergedImage(const std::string& filter, const ImageProcess& object) {
    return FindOption(filter, "TargetType") != nullptr && object.TargetType != AllLayers &&
           object.TargetType != CurrentLayer;
}

int32_t Count(const auto& list) {
    return static_cast<int32_t>(list.size());
}

}  // namespace

LayerRun::LayerRun(const Module& module, const std::string& filter, ImageProcess& object,
                   Document document)
    : module_(module), filter_(filter), object_(object), document_(std::move(document)) {
}

bool LayerRun::Run() {
    const int phases = module_.getPhase(filter_.c_str());
    for (int phase = 0; phase < phases; ++phase) {
        if (!BeginPhase(phase)) {
            return false;
        }
        VisitItems();
    }
    return true;
}

bool LayerRun::BeginPhase(int phase) {
    phase_ = phase;
    sourceWidth_ = document_.width;
    sourceHeight_ = document_.height;
    // A single layer keeps its pixels' place until the phase's last visit, which replaces them.
    const Layer* const whole = WholePicture(document_);
    merged_ = whole != nullptr ? std::vector<RGBA16>() : Flatten(document_);
    const RGBA16* const merged = whole != nullptr ? whole->pixels.data() : merged_.data();
    auto width = static_cast<uint32_t>(sourceWidth_);
    auto height = static_cast<uint32_t>(sourceHeight_);
    uint32_t phaseFlag = 0;
    const int answer = module_.phase(filter_.c_str(), &object_, phase, &width, &height, &merged->r,
                                     0, 0, &phaseFlag);
    if (answer == -1) {
        return false;
    }
    if (answer <= 0) {
        throw RunError(answer == -2 ? filter_ + " refused, see its message"
                                    : filter_ + " found nothing that it can work on");
    }
    showOnly_ = phaseFlag == 1;
    if (!showOnly_ && module_.isSizeChange(filter_.c_str())) {
        if (!IsSize(width) || !IsSize(height)) {
            throw RunError(filter_ + " asked for an impossible size, " + std::to_string(width) +
                           " x " + std::to_string(height));
        }
        document_.width = static_cast<int32_t>(width);
        document_.height = static_cast<int32_t>(height);
    }
    return true;
}

void LayerRun::VisitItems() {
    std::vector<Item> settled;
    for (Item& item : document_.items) {
        auto* folder = std::get_if<Folder>(&item);
        Visited visited = folder != nullptr ? StandInFor(*folder)
                                            : Visited{.layer = std::move(std::get<Layer>(item))};
        Visit(visited, {Count(settled), -1});
        std::ranges::move(visited.above, std::back_inserter(settled));
        if (visited.isRemoved) {
            continue;
        }
        if (folder == nullptr || visited.isPlain) {
            settled.emplace_back(std::move(visited.layer));
        } else {
            folder->Attributes() = visited.layer.Attributes();
            LayerPosition next{Count(settled), 0};
            VisitFolder(*folder, next);
            settled.push_back(std::move(item));
        }
    }
    document_.items = std::move(settled);
}

/// Visits the layers of a folder and of those inside it; `next` is the first one's position, and
/// in the end that behind the last one.
void LayerRun::VisitFolder(Folder& folder, LayerPosition& next) {
    std::vector<Item> settled;
    for (Item& item : folder.items) {
        if (auto* inner = std::get_if<Folder>(&item)) {
            VisitFolder(*inner, next);
            settled.push_back(std::move(item));
            continue;
        }
        Visited visited{.layer = std::move(std::get<Layer>(item))};
        Visit(visited, next);
        next.layer += Count(visited.above);
        std::ranges::move(visited.above, std::back_inserter(settled));
        if (!visited.isRemoved) {
            settled.emplace_back(std::move(visited.layer));
            ++next.layer;
        }
    }
    folder.items = std::move(settled);
}

/// Shows a layer again and again, as long as the filter puts new layers above it.
void LayerRun::Visit(Visited& visited, LayerPosition position) {
    int32_t& index = position.layer < 0 ? position.item : position.layer;
    while (Show(visited, position)) {
        ++index;
        if (visited.above.size() > kMostNewLayers) {
            throw RunError(filter_ + " does not stop making new layers");
        }
    }
}

/// Shows a layer once; true when a new layer now lies above it.
bool LayerRun::Show(Visited& visited, LayerPosition position) {
    std::vector<RGBA16> produced = ZeroPixels(PixelCount(document_.width, document_.height));
    Answer answer = Ask(visited, position, produced);
    if (showOnly_) {
        return false;
    }
    if (answer.code == kRemoveItem) {
        visited.isRemoved = true;
        return false;
    }
    if (answer.code == kNewLayer) {
        Layer& made = visited.above.emplace_back();
        made.Attributes() = answer.attributes;
        Store(made, std::move(produced), answer.area, true);
        return true;
    }
    const bool isMerged = WorksOnMergedImage(filter_, object_) && !answer.area.IsEmpty();
    visited.isPlain = answer.kind == kPlainLayer || isMerged;
    if (visited.isPlain) {
        answer.attributes = LayerAttributes{.name = std::move(answer.attributes.name)};
    }
    if (isMerged) {
        // What stands in its place is a new layer.
        visited.layer.origin = nullptr;
    }
    visited.layer.Attributes() = answer.attributes;
    if (!visited.isFolder || visited.isPlain) {
        const bool resized = sourceWidth_ != document_.width || sourceHeight_ != document_.height;
        Store(visited.layer, std::move(produced), answer.area, resized || visited.isPlain);
    }
    return false;
}

/// Calls the filter; a refusal is an answer that changes nothing.
LayerRun::Answer LayerRun::Ask(const Visited& visited, LayerPosition position,
                               std::vector<RGBA16>& produced) const {
    const Layer& layer = visited.layer;
    const RECT bounds{layer.bounds.left, layer.bounds.top, layer.bounds.right, layer.bounds.bottom};
    RECT area{};
    uint32_t mode = ModeOf(layer.kind);
    auto opacity = static_cast<uint32_t>(std::lround(layer.opacity));
    uint32_t flag = layer.clip ? 1 : 0;
    const LayerNameBytes nameBefore = NameForModule(layer.name);
    LayerNameBytes name = nameBefore;
    // A folder has no pixels of its own to change.
    const bool skipPixels = visited.isFolder;
    Answer answer{.attributes = layer.Attributes()};
    if (!module_.execute(filter_.c_str(), &object_, phase_, position.item, position.layer, 0,
                         produced.data(), &area, layer.pixels.data(),
                         layer.bounds.IsEmpty() ? nullptr : &bounds, skipPixels, &answer.code,
                         &answer.kind, &mode, &opacity, &flag, name.data())) {
        answer.code = 0;
        answer.kind = 0;
        return answer;
    }
    answer.area = ClipToImage({area.left, area.top, area.right, area.bottom}, document_.width,
                              document_.height);
    answer.attributes.name = NameFromModule(layer.name, nameBefore, name);
    answer.attributes.opacity = Answered(layer.opacity, opacity);
    answer.attributes.kind = Answered(layer.kind, mode);
    answer.attributes.clip = flag == 1;
    return answer;
}

/// Takes the written area of what the filter produced into a layer; into an empty one when it is
/// to hold nothing else.
void LayerRun::Store(Layer& layer, std::vector<RGBA16> produced, PixelRect written,
                     bool fresh) const {
    if (written == PixelRect{0, 0, document_.width, document_.height}) {
        layer.pixels = std::move(produced);
    } else {
        if (fresh) {
            layer.pixels.assign(produced.size(), RGBA16{});
        }
        for (int32_t y = written.top; y < written.bottom; ++y) {
            const auto first = ptrdiff_t{y} * document_.width + written.left;
            std::copy_n(produced.begin() + first, written.Width(), layer.pixels.begin() + first);
        }
    }
    if (fresh || !written.IsEmpty()) {
        layer.bounds = BoundsOf(layer.pixels, document_.width, document_.height);
    }
}

LayerRun::Visited LayerRun::StandInFor(Folder& folder) const {
    Visited visited{.isFolder = true};
    visited.layer.Attributes() = folder.Attributes();
    Document inside{sourceWidth_, sourceHeight_, 16, std::move(folder.items)};
    visited.layer.pixels = Flatten(inside);
    visited.layer.bounds = BoundsOf(visited.layer.pixels, sourceWidth_, sourceHeight_);
    folder.items = std::move(inside.items);
    return visited;
}

}  // namespace imgbasic::host
