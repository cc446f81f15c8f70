#pragma once

#include "plugin/imgbasic/filter_row.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// "chan_decomp": four new layers, one a channel, in place of the current layer. No options.
/// The host visits the layer again after each one; curLayer and curSubLayer follow it as the new
/// layers push it down.
class ChannelDecomposeImageProcess final : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    bool Execute(const ExecuteArgs& args) override;
    /// Whether all four layers have been produced at `index`; true for any other item.
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;

    int32_t startLayer = -1;  ///< position at which the run started; -1 before it does
    int32_t startSubLayer = -1;
    bool finished = false;  ///< the end of the run has been reported

  private:
    int32_t ProducedLayers() const;
    void ProduceLayer(const ExecuteArgs& args);
};

template <>
inline constexpr FilterRow kRow<ChannelDecomposeImageProcess>{
    .name = "chan_decomp",
    .displayName = {"チャンネル分解", "\x83`\x83\x83\x83\x93\x83l\x83\x8B\x95\xAA\x89\xF0"},
};

}  // namespace imgbasic
