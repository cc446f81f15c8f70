#include "plugin/imgbasic/chan_merge.h"

#include <algorithm>

#include "plugin/imgbasic/channel_layer_name.h"
#include "plugin/imgbasic/message_box.h"

namespace imgbasic {
namespace {

using texts::Message;

constexpr Channel kChannels[] = {Channel::R, Channel::G, Channel::B, Channel::A};

/// Of the planes together.
constexpr size_t kBytesAPixel = 3 * sizeof(uint16_t);

/// A layer without pixels. A rectangle counts as empty here only when its sides are reversed.
constexpr PixelRect kNoRect{1, 1, -1, -1};

const Text& NameOf(Channel channel) {
    return texts::kChannelNames[IndexOf(channel)];
}

/// The channel that a layer's name announces; none for a tag without a name behind it.
std::optional<Channel> TaggedChannel(std::string_view name) {
    if (name.size() <= kChannelTagLength) {
        return std::nullopt;
    }
    for (const Channel channel : kChannels) {
        if (name.starts_with(kChannelTags[IndexOf(channel)])) {
            return channel;
        }
    }
    return std::nullopt;
}

std::string_view WithoutTag(std::string_view name) {
    return name.substr(kChannelTagLength);
}

void Join(PixelRect& whole, const PixelRect& part) {
    if (part.left > part.right || part.top > part.bottom) {
        return;
    }
    const bool hasColumns = whole.left <= whole.right;
    whole.left = hasColumns ? std::min(whole.left, part.left) : part.left;
    whole.right = hasColumns ? std::max(whole.right, part.right) : part.right;
    const bool hasRows = whole.top <= whole.bottom;
    whole.top = hasRows ? std::min(whole.top, part.top) : part.top;
    whole.bottom = hasRows ? std::max(whole.bottom, part.bottom) : part.bottom;
}

}  // namespace

int ChannelMergeImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return 0;
}

bool ChannelMergeImageProcess::BatchDispose() {
    return false;
}

int ChannelMergeImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    layers_ = {};
    current_ = -1;
    slots_ = kNoSlots;
    workPlanes_.reset();
    return ApplyNow();
}

int ChannelMergeImageProcess::Phase(int phase, uint32_t* /*newWidth*/, uint32_t* /*newHeight*/,
                                    const RGBA16* merged, uint64_t /*unused1*/,
                                    uint64_t /*unused2*/, uint32_t* phaseFlag) {
    if (phase == 0) {
        StoreThrough(phaseFlag, 1);
        return KeepMergedImage(merged);
    }
    if (current_ < 0) {
        return 0;
    }
    // Not yet the object's: without memory the phase can be asked for again.
    Slots slots = slots_;
    const bool valid = FindChannels(slots) && IsAlphaLast(slots);
    if (valid && !MakeWorkPlanes()) {
        return 0;
    }
    slots_ = slots;
    return valid ? KeepMergedImage(merged) : -2;
}

bool ChannelMergeImageProcess::MakeWorkPlanes() {
    workPlanes_.reset();  // before the next ones are allocated, not after
    const size_t pixels = PixelCount(width, height);
    if (pixels <= SIZE_MAX / kBytesAPixel) {
        workPlanes_ = AllocateZeroed(pixels * kBytesAPixel);
    }
    return workPlanes_ != nullptr || pixels == 0;
}

uint16_t* ChannelMergeImageProcess::Plane(Channel color) const {
    return reinterpret_cast<uint16_t*>(workPlanes_.get()) +
           IndexOf(color) * PixelCount(width, height);
}

bool ChannelMergeImageProcess::Execute(const ExecuteArgs& args) {
    if (args.phase == 0) {
        CollectLayer(args);
    } else {
        MergeLayer(args);
    }
    return true;
}

bool ChannelMergeImageProcess::AdjustLocate(int /*index*/, int /*layer*/, int /*subLayer*/,
                                            double* /*x*/, double* /*y*/) {
    return true;
}

bool ChannelMergeImageProcess::Dispose() {
    workPlanes_.reset();
    return true;
}

void ChannelMergeImageProcess::CollectLayer(const ExecuteArgs& args) {
    LayerData layer;
    layer.name = ReadLayerName(args.layerName);
    layer.index = args.layer;
    layer.subIndex = args.subLayer;
    layer.rect = args.inRect == nullptr ? kNoRect
                                        : PixelRect{args.inRect->left, args.inRect->top,
                                                    args.inRect->right, args.inRect->bottom};
    layers_.push_back(layer);
    if (args.layer == curLayer && args.subLayer == curSubLayer) {
        current_ = static_cast<int32_t>(layers_.size()) - 1;
    }
}

bool ChannelMergeImageProcess::Refuse(Message message, const Text& argument) const {
    ShowError(ownerWindow, texts::Of(message), argument);
    return false;
}

bool ChannelMergeImageProcess::FindChannels(Slots& slots) {
    const LayerData& own = layers_[static_cast<size_t>(current_)];
    const auto ownChannel = TaggedChannel(own.name);
    if (!ownChannel) {
        return Refuse(Message::NotAChannelImage);
    }
    const std::string_view baseName = WithoutTag(own.name);
    slots[IndexOf(*ownChannel)] = current_;
    union_ = own.rect;
    int missing = 3;
    for (const LayerData& layer : layers_) {
        if (&layer == &own || !IsAtOwnLevel(layer)) {
            continue;
        }
        const auto channel = TaggedChannel(layer.name);
        if (!channel || WithoutTag(layer.name) != baseName) {
            continue;
        }
        if (slots[IndexOf(*channel)] >= 0) {
            return Refuse(Message::DuplicateChannelImage, NameOf(*channel));
        }
        // Never so while layers at other levels are passed over above.
        if (!IsAtOwnLevel(layer)) {
            return Refuse(Message::ChannelImageAtOtherLevel, NameOf(*channel));
        }
        slots[IndexOf(*channel)] = static_cast<int32_t>(&layer - layers_.data());
        Join(union_, layer.rect);
        if (--missing == 0) {
            return true;
        }
    }
    return Refuse(Message::MissingChannelImages);
}

bool ChannelMergeImageProcess::IsAtOwnLevel(const LayerData& layer) const {
    return curSubLayer >= 0 ? layer.index == curLayer && layer.subIndex >= 0 : layer.subIndex < 0;
}

bool ChannelMergeImageProcess::IsAlphaLast(const Slots& slots) const {
    const int32_t last = *std::max_element(slots.begin(), slots.end());
    return last == slots[IndexOf(Channel::A)] || Refuse(Message::AlphaMustBeBelow);
}

void ChannelMergeImageProcess::MergeLayer(const ExecuteArgs& args) {
    const auto channel = ChannelAt(args.layer, args.subLayer);
    if (!channel) {
        // The folder that holds the layers keeps its area.
        if (curSubLayer >= 0 && args.layer == curLayer && args.subLayer < 0) {
            PassRect(args);
        }
        return;
    }
    if (*channel != Channel::A) {
        StoreThrough(args.resultCode, 1);
        CloseGap(args.layer, args.subLayer);
        KeepColor(args, *channel);
    } else {
        HandOver(args);
    }
    slots_[IndexOf(*channel)] = -1;
}

std::optional<Channel> ChannelMergeImageProcess::ChannelAt(int32_t layer, int32_t subLayer) const {
    for (const Channel channel : kChannels) {
        const int32_t slot = slots_[IndexOf(channel)];
        if (slot < 0) {
            continue;
        }
        const LayerData& record = layers_[static_cast<size_t>(slot)];
        if (record.index == layer && record.subIndex == subLayer) {
            return channel;
        }
    }
    return std::nullopt;
}

/// The host removes the layer at this position, which moves up those behind it.
void ChannelMergeImageProcess::CloseGap(int32_t layer, int32_t subLayer) {
    for (const int32_t slot : slots_) {
        if (slot < 0) {
            continue;
        }
        LayerData& record = layers_[static_cast<size_t>(slot)];
        if (curSubLayer >= 0) {
            if (record.index == curLayer && record.subIndex > subLayer) {
                --record.subIndex;
            }
        } else if (record.subIndex < 0 && record.index > layer) {
            --record.index;
        }
    }
}

void ChannelMergeImageProcess::KeepColor(const ExecuteArgs& args, Channel channel) {
    if (args.inRect == nullptr || args.src == nullptr || workPlanes_ == nullptr) {
        return;
    }
    const uint32_t percent = args.layerOpacity == nullptr ? 100 : *args.layerOpacity;
    ForEachRun(Plane(channel), args.src, width, ClippedTo(*this, *args.inRect),
               [=](uint16_t* plane, const RGBA16* src, size_t count, Store store) {
                   TakeChannel(plane, src, count, channel, percent, store);
               });
}

/// Puts the result in place of the alpha layer, under the base name.
void ChannelMergeImageProcess::HandOver(const ExecuteArgs& args) const {
    if (args.outRect != nullptr) {
        *args.outRect = {union_.left, union_.top, union_.right, union_.bottom};
    }
    if (args.dst != nullptr && workPlanes_ != nullptr) {
        const bool hasAlpha = args.inRect != nullptr && args.src != nullptr;
        WriteResult(args.dst, args.src, hasAlpha ? ClippedTo(*this, *args.inRect) : PixelRect{});
    }
    const int32_t alphaSlot = slots_[IndexOf(Channel::A)];
    WriteLayerName(args.layerName, WithoutTag(layers_[static_cast<size_t>(alphaSlot)].name));
    StoreThrough(args.layerMode, 0);
}

/// Writes the union of the layers; outside `alphaRect` it is transparent.
void ChannelMergeImageProcess::WriteResult(RGBA16* dst, const RGBA16* alphas,
                                           PixelRect alphaRect) const {
    const PixelRect whole =
        ClippedTo(*this, {union_.left, union_.top, union_.right, union_.bottom});
    const Store store = StoreFor(PixelCount(width, height));
    const uint16_t* const r = Plane(Channel::R);
    const uint16_t* const g = Plane(Channel::G);
    const uint16_t* const b = Plane(Channel::B);
    const auto writeTransparent = [=](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i) {
            dst[i] = {r[i], g[i], b[i], 0};
        }
    };
    for (int32_t y = whole.top; y < whole.bottom; ++y) {
        const size_t row = static_cast<size_t>(y) * static_cast<size_t>(width);
        const bool hasAlpha = y >= alphaRect.top && y < alphaRect.bottom;
        const size_t left = row + static_cast<size_t>(whole.left);
        const size_t right = row + static_cast<size_t>(whole.right);
        const size_t begin =
            hasAlpha ? std::clamp(row + static_cast<size_t>(alphaRect.left), left, right) : left;
        const size_t end =
            hasAlpha ? std::clamp(row + static_cast<size_t>(alphaRect.right), left, right) : left;
        writeTransparent(left, begin);
        if (begin < end) {
            JoinChannels(dst + begin, {r + begin, g + begin, b + begin}, alphas + begin,
                         end - begin, store);
        }
        writeTransparent(std::max(begin, end), right);
    }
}

}  // namespace imgbasic
