#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include <cmath>

#include "host/gimp/dialog.h"
#include "host/gimp/dialog_window.h"
#include "host/gimp/option_controls.h"
#include "host/gimp/scaling_run.h"
#include "host/gimp/words.h"

namespace imgbasic::host {
namespace {

constexpr gint kEntryWidth = 8;  ///< characters

const FilterOption& OptionOf(const FilterJob& job, const char* name) {
    return *FindOption(job.filter->name, name);
}

PixelSize SizeOf(const FilterJob& job) {
    return {gimp_image_width(job.image), gimp_image_height(job.image)};
}

/// The percentages last used, where they suit this image, or its own size.
PixelSize SizeToBeginWith(const FilterJob& job) {
    try {
        return ValueOf(job, "RatioSize") != 0 ? SizeAskedFor(job) : SizeOf(job);
    } catch (const SizeError&) {
        return SizeOf(job);
    }
}

/// The control that GIMP has for a size: in pixels, percent or lengths, with a chain that keeps
/// the shape.
GtkWidget* NewSizeControl(const FilterJob& job) {
    const PixelSize source = SizeOf(job);
    const PixelSize first = SizeToBeginWith(job);
    double resolutionX = 0;
    double resolutionY = 0;
    gimp_image_get_resolution(job.image, &resolutionX, &resolutionY);
    const GimpUnit unit = ValueOf(job, "RatioSize") != 0 ? GIMP_UNIT_PERCENT : GIMP_UNIT_PIXEL;
    return gimp_coordinates_new(unit, "%a", TRUE, TRUE, kEntryWidth, GIMP_SIZE_ENTRY_UPDATE_SIZE,
                                ValueOf(job, "FixRatio") != 0, TRUE,
                                LabelOf(OptionOf(job, "newWidth")), first.width, resolutionX,
                                kSmallestSide, kLargestSide, 0, source.width,
                                LabelOf(OptionOf(job, "newHeight")), first.height, resolutionY,
                                kSmallestSide, kLargestSide, 0, source.height);
}

/// The percentage that a side of the control shows; 0 for none or a broken one.
int32_t WholePercent(GimpSizeEntry* entry, gint side) {
    const double shown = gimp_size_entry_get_value(entry, side);
    const double whole = std::round(shown);
    const bool isPercent = gimp_size_entry_get_unit(entry) == GIMP_UNIT_PERCENT;
    return isPercent && std::abs(shown - whole) < 0.005 ? static_cast<int32_t>(whole) : 0;
}

void TakeSize(GtkWidget* control, FilterJob& job) {
    auto* const entry = GIMP_SIZE_ENTRY(control);
    const auto pixels = [&](gint side) {
        return static_cast<int32_t>(std::lround(gimp_size_entry_get_refval(entry, side)));
    };
    ValueOf(job, "newWidth") = pixels(0);
    ValueOf(job, "newHeight") = pixels(1);
    const int32_t percentX = WholePercent(entry, 0);
    const int32_t percentY = WholePercent(entry, 1);
    ValueOf(job, "RatioSize") = percentX > 0 && percentY > 0 ? 1 : 0;
    if (ValueOf(job, "RatioSize") != 0) {
        ValueOf(job, "RatioWidth") = percentX;
        ValueOf(job, "RatioHeight") = percentY;
    }
    ValueOf(job, "FixRatio") =
        gimp_chain_button_get_active(GIMP_CHAIN_BUTTON(GIMP_COORDINATES_CHAINBUTTON(control))) ? 1
                                                                                               : 0;
}

}  // namespace

bool AskSize(FilterJob& job) {
    StartWindows();
    DialogWindow dialog(*job.filter);
    GtkWidget* const size = NewSizeControl(job);
    GtkWidget* boundary = nullptr;
    GtkWidget* boundAlpha = nullptr;
    // Only between pixels is there something beyond the border to ask about.
    const auto enable = [&] {
        const bool isBilinear = ValueOf(job, "InterType") == 2;
        gtk_widget_set_sensitive(boundary, isBilinear);
        gtk_widget_set_sensitive(boundAlpha, isBilinear && ValueOf(job, "BoundaryType") != 0);
    };
    OptionControls controls(job, enable);
    controls.Add(OptionOf(job, "InterType"));
    boundary = controls.Add(OptionOf(job, "BoundaryType"));
    boundAlpha = controls.Add(OptionOf(job, "BoundAlpha"));
    enable();
    dialog.Add(size);
    dialog.Add(controls.Table());
    if (!dialog.Ask()) {
        return false;
    }
    TakeSize(size, job);
    return true;
}

}  // namespace imgbasic::host
