#pragma once

#include "plugin/imgbasic/filter_row.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// What the filters that work on a target (TargetType) have in common: all but their Execute.
/// It has no fields, since a filter's own follow those of ImageProcess directly.
class TargetImageProcess : public ImageProcess {
  public:
    int BatchPrepare() override;
    bool BatchDispose() override;
    int Dialog(ApplyCallback apply) override;
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
              uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) override;
    /// Whether the position is outside the one layer that the filter is aimed at.
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override;
    bool Dispose() override;

  protected:
    /// The filter's row. Behind the slots that the host calls.
    virtual const FilterRow& Row() const = 0;

  private:
    void TakeOptionsFrom(const ImageProcess& earlier);
};

static_assert(sizeof(TargetImageProcess) == sizeof(ImageProcess));

}  // namespace imgbasic
