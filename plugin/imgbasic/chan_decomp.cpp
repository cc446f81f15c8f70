#include "plugin/imgbasic/chan_decomp.h"

#include <cstring>

#include "lib/base/shift_jis.h"
#include "lib/image/point/channels.h"
#include "plugin/imgbasic/channel_layer_name.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {
namespace {

constexpr uint32_t kChannels = 4;

// Of a name that leaves no room for a tag, this many bytes are looked at and all but the last,
// or last two, kept.
constexpr size_t kNameLimit = 58;

/// Cuts a long Shift-JIS name by a walk over pairs of bytes. A character that begins at byte 57 is
/// left out, but one that begins at 56 loses its second byte: documents have such names.
std::string_view CutForTag(std::string_view name) {
    if (name.size() < kNameLimit) {
        return name;
    }
    int state = 0;  // 1: the pair's second byte is a lead byte
    for (size_t pair = 0; pair < kNameLimit; pair += 2) {
        if (state <= 0 && IsLeadByte(name[pair])) {
            state = -1;
        } else {
            state = IsLeadByte(name[pair + 1]) ? 1 : 0;
        }
    }
    return name.substr(0, state == 1 ? kNameLimit - 2 : kNameLimit - 1);
}

// Positions come from the host: at the end of their range they wrap.
int32_t Difference(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

void Advance(int32_t& position) {
    position = static_cast<int32_t>(static_cast<uint32_t>(position) + 1);
}

/// Puts the tag before the name in the host's buffer, which holds both once the name is cut.
/// In place: by now the visit counts as answered, so that nothing may fail any more.
void PutTagBefore(char* buffer, std::string_view tag) {
    static_assert(kChannelTagLength + kNameLimit - 1 < kLayerNameSize);
    if (buffer == nullptr) {
        return;
    }
    const size_t kept = CutForTag(ReadLayerName(buffer)).size();
    std::memmove(buffer + tag.size(), buffer, kept);
    tag.copy(buffer, tag.size());
    buffer[tag.size() + kept] = '\0';
}

void DescribeLayer(const ExecuteArgs& args, Channel channel) {
    PutTagBefore(args.layerName, kChannelTags[IndexOf(channel)]);
    if (channel == Channel::A) {
        StoreThrough(args.layerMode, 1);
        return;
    }
    StoreThrough(args.layerMode, 2);
    StoreThrough(args.layerOpacity, 100);
    StoreThrough(args.layerFlag, 1);
}

}  // namespace

int ChannelDecomposeImageProcess::BatchPrepare() {
    applyCallback = nullptr;
    return 0;
}

bool ChannelDecomposeImageProcess::BatchDispose() {
    return false;
}

int ChannelDecomposeImageProcess::Dialog(ApplyCallback apply) {
    applyCallback = apply;
    startLayer = -1;
    startSubLayer = -1;
    finished = false;
    return ApplyNow();
}

int ChannelDecomposeImageProcess::Phase(int /*phase*/, uint32_t* /*newWidth*/,
                                        uint32_t* /*newHeight*/, const RGBA16* merged,
                                        uint64_t /*unused1*/, uint64_t /*unused2*/,
                                        uint32_t* /*phaseFlag*/) {
    return KeepMergedImage(merged);
}

bool ChannelDecomposeImageProcess::Execute(const ExecuteArgs& args) {
    switch (SelectCurrent(*this, args)) {
        case TargetAction::Refuse:
            return false;
        case TargetAction::PassRect:
            PassRect(args);
            return true;
        case TargetAction::ProcessLayer:
            ProduceLayer(args);
            return true;
        default:
            return true;
    }
}

void ChannelDecomposeImageProcess::ProduceLayer(const ExecuteArgs& args) {
    if (startLayer < 0) {
        startLayer = curLayer;
        startSubLayer = curSubLayer;
    }
    const auto produced = static_cast<uint32_t>(ProducedLayers());
    if (produced >= kChannels) {
        if (!finished) {
            StoreThrough(args.resultCode, 1);
            finished = true;
        }
        return;
    }
    const auto channel = static_cast<Channel>(produced);
    StoreThrough(args.resultCode, 2);
    Advance(curSubLayer >= 0 ? curSubLayer : curLayer);
    DescribeLayer(args, channel);
    if (args.inRect == nullptr) {
        return;
    }
    PassRect(args);
    if (args.dst != nullptr && args.src != nullptr) {
        ForEachRun(args.dst, args.src, width, ClippedTo(*this, *args.inRect),
                   [channel](RGBA16* dst, const RGBA16* src, size_t count, Store store) {
                       IsolateChannel(dst, src, count, channel, store);
                   });
    }
}

int32_t ChannelDecomposeImageProcess::ProducedLayers() const {
    return curSubLayer < 0 ? Difference(curLayer, startLayer)
                           : Difference(curSubLayer, startSubLayer);
}

bool ChannelDecomposeImageProcess::AdjustLocate(int index, int /*layer*/, int /*subLayer*/,
                                                double* /*x*/, double* /*y*/) {
    return index != startLayer || ProducedLayers() >= static_cast<int32_t>(kChannels);
}

bool ChannelDecomposeImageProcess::Dispose() {
    return true;
}

}  // namespace imgbasic
