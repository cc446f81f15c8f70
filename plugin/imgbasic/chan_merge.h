#pragma once

#include <array>
#include <optional>

#include "lib/base/kv_array.h"
#include "lib/base/zeroed_block.h"
#include "lib/image/point/channels.h"
#include "plugin/imgbasic/filter_row.h"
#include "plugin/imgbasic/layer_data.h"
#include "plugin/imgbasic/process.h"
#include "plugin/imgbasic/texts.h"

namespace imgbasic {

/// "chan_merge": the four layers that hold the channels of one picture, joined into one again in
/// place of the alpha layer. No options. Runs in two phases: the first collects every layer, the
/// second merges; between them, Phase checks the layers and tells the user what is wrong.
class ChannelMergeImageProcess final : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    bool Execute(const ExecuteArgs& args) override;
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;

  private:
    /// Place in `layers_` of each channel's layer; -1 for none, or none any more.
    using Slots = std::array<int32_t, 4>;
    static constexpr Slots kNoSlots{-1, -1, -1, -1};

    void CollectLayer(const ExecuteArgs& args);
    bool FindChannels(Slots& slots);
    bool IsAtOwnLevel(const LayerData& layer) const;
    bool IsAlphaLast(const Slots& slots) const;
    bool MakeWorkPlanes();
    bool Refuse(texts::Message message, const Text& argument = {"", ""}) const;
    void MergeLayer(const ExecuteArgs& args);
    std::optional<Channel> ChannelAt(int32_t layer, int32_t subLayer) const;
    void CloseGap(int32_t layer, int32_t subLayer);
    void KeepColor(const ExecuteArgs& args, Channel channel);
    void HandOver(const ExecuteArgs& args) const;
    void WriteResult(RGBA16* dst, const RGBA16* alphas, PixelRect alphaRect) const;

    uint16_t* Plane(Channel color) const;

    KVArray<LayerData> layers_;  ///< in the order in which the host showed them
    int32_t current_ = -1;       ///< place in `layers_` of the host's current layer
    Slots slots_ = kNoSlots;
    PixelRect union_;         ///< of the four layers' rectangles
    ZeroedBlock workPlanes_;  ///< the colours of the result: a plane of the image's size for each
};

template <>
inline constexpr FilterRow kRow<ChannelMergeImageProcess>{
    .name = "chan_merge",
    .displayName = {"チャンネル結合", "\x83`\x83\x83\x83\x93\x83l\x83\x8B\x8C\x8B\x8D\x87"},
    .phases = 2,
};

}  // namespace imgbasic
