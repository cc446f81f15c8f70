#pragma once

#include <climits>
#include <cstdint>
#include <span>
#include <variant>
#include <vector>

#include "plugin/imgbasic/process.h"

namespace imgbasic {

class GrayScaleImageProcess;
class MonoImageProcess;
class NegaImageProcess;
class ReduceColorImageProcess;
class ScalingImageProcess;

// What the options dialogs do, apart from the windows that they do it with.

/// One option of a dialog with a preview.
struct DialogOption {
    int control;  ///< identifier of the control that shows it
    std::variant<int32_t*, bool*> field;
    int32_t low = INT_MIN;  ///< execute and preview do nothing outside [low, high]
    int32_t high = INT_MAX;
    int32_t sent = -1;   ///< what the host last ran with; starts as what no option can be
    int32_t absent = 0;  ///< what counts as read when the dialog lacks the control
};

/// The options of each dialog with a preview, bound to the object, which must outlive them.
std::vector<DialogOption> OptionsOf(NegaImageProcess& process);
std::vector<DialogOption> OptionsOf(GrayScaleImageProcess& process);
std::vector<DialogOption> OptionsOf(MonoImageProcess& process);
std::vector<DialogOption> OptionsOf(ReduceColorImageProcess& process);

enum class Press { Preview, Execute };
enum class DialogEnd { StaysOpen, Confirmed, Cancelled };

/// Carries out a press of preview or execute with what the controls show, one number an option.
/// The host runs through `apply`, if there is one, unless it last ran with the same numbers;
/// cancelled means that it refused. After a preview that was not refused the object has its
/// old options again.
DialogEnd CarryOut(Press press, std::span<DialogOption> options, std::span<const int32_t> shown,
                   ApplyCallback apply);

struct ValueRange {
    int32_t low;
    int32_t high;
};

/// What the scaling dialog edits until it is confirmed.
struct ScalingOptions {
    explicit ScalingOptions(const ScalingImageProcess& process);

    int32_t sourceWidth;  ///< pixels, at least 1
    int32_t sourceHeight;
    int32_t pixelWidth;  ///< wanted size, pixels
    int32_t pixelHeight;
    bool ratioMode;  ///< the percentages count, not the pixels
    int32_t ratioWidth;
    int32_t ratioHeight;
    bool fixRatio;
    int32_t interType;
    int32_t boundaryType;
    bool boundAlpha;
    bool changeBrush;

    // What can be edited with these options.
    bool PixelsEnabled() const { return !ratioMode; }
    bool RatiosEnabled() const { return ratioMode; }
    bool BoundaryEnabled() const { return interType == 2; }
    bool BoundAlphaEnabled() const { return BoundaryEnabled() && boundaryType != 0; }

    /// Settles them, and the size that follows from them, in the object.
    void StoreIn(ScalingImageProcess& process) const;
};

/// The percentages that keep a side of `source` pixels at 1 pixel at least and about 8192 at most.
ValueRange RatioRange(int32_t source);

/// The value that goes with `value` at the proportion of the two references, toward zero; within
/// the range of an int32_t. A reference below 1 counts as 1.
int32_t LinkedValue(int32_t value, int32_t ownReference, int32_t partnerReference);

}  // namespace imgbasic
