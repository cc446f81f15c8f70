#pragma once

#include <optional>
#include <vector>

#include "host/gimp/filter_job.h"
#include "host/gimp/layer_pixels.h"

namespace imgbasic::host {

/// What a filter with a target makes of an image, worked out before anything in the image changes.
class TargetRun {
  public:
    /// Runs the filter. Throws RunError, FileError and std::bad_alloc.
    TargetRun(const Module& module, const FilterJob& job);
    TargetRun(const TargetRun&) = delete;
    TargetRun& operator=(const TargetRun&) = delete;
    /// What is shown is taken back.
    ~TargetRun() { Hide(); }

    /// Shows the result in the image, without a trace in its history.
    void Show();
    /// Puts the image back as it was.
    void Hide();
    /// Makes the result the image's, as one step for Undo, and returns the layer that then stands
    /// where the drawable was.
    gint32 Apply();

  private:
    struct LayerResult {
        gint32 layer;  ///< -1 for the merged picture, which is no layer yet
        BufferHandle before;
        BufferHandle after;
    };

    void RunOnLayer(const Module& module, gint32 layer);
    void RunOnMerged(const Module& module);
    void InsertMerged();
    bool IsMerged() const { return !results_.empty() && results_.front().layer == -1; }

    FilterJob job_;
    std::vector<LayerResult> results_;
    std::vector<gint32> hidden_;  ///< what showing the merged picture made invisible
    gint32 inserted_ = -1;        ///< the merged picture while it is a layer
    bool isShown_ = false;
};

}  // namespace imgbasic::host
