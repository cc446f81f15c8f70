#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "plugin/imgbasic/filter_row.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {

// What the options dialogs do, apart from the windows that they do it with.

enum class Press { Preview, Execute };
enum class DialogEnd { StaysOpen, Confirmed, Cancelled };

/// The options of an object in a dialog with a preview, and those that the host last ran with.
class PreviewedOptions {
  public:
    /// `filter` is the object's; both must outlive this.
    PreviewedOptions(ImageProcess& process, const FilterRow& filter);

    /// Carries out a press of preview or execute with what the controls show, one number an
    /// option. The host runs through applyCallback, if there is one, unless it last ran with the
    /// same numbers; cancelled means that it refused. After a preview that was not refused the
    /// object has its old options again.
    DialogEnd CarryOut(Press press, std::span<const int32_t> shown);

  private:
    ImageProcess& process_;
    const FilterRow& filter_;
    std::vector<int32_t> sent_;
};

/// What counts as read when the dialog lacks the option's control: no number at all, but the
/// initial choice or switch.
constexpr int32_t AbsentValue(const FilterOption& option) {
    return option.kind == OptionKind::Number ? option.NoValue() : option.initial;
}

/// What the scaling dialog edits until it is confirmed.
struct ScalingOptions {
    explicit ScalingOptions(const ScalingImageProcess& process);

    int32_t sourceWidth;  ///< pixels, at least 1
    int32_t sourceHeight;
    ScalingImageProcess edited;  ///< holds the options; its new size is the wanted one in pixels

    // What can be edited with these options.
    bool PixelsEnabled() const { return !edited.RatioSize; }
    bool RatiosEnabled() const { return edited.RatioSize; }
    bool BoundaryEnabled() const { return edited.InterType == 2; }
    bool BoundAlphaEnabled() const { return BoundaryEnabled() && edited.BoundaryType != 0; }

    /// Settles them, and the size that follows from them, in the object.
    void StoreIn(ScalingImageProcess& process) const;
};

struct ValueRange {
    int32_t low;
    int32_t high;
};

/// The percentages that keep a side of `source` pixels at 1 pixel at least and about 8192 at most.
ValueRange RatioRange(int32_t source);

/// The value that goes with `value` at the proportion of the two references, toward zero; within
/// the range of an int32_t. A reference below 1 counts as 1.
int32_t LinkedValue(int32_t value, int32_t ownReference, int32_t partnerReference);

}  // namespace imgbasic
