#pragma once

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include "plugin/imgbasic/filter_row.h"

namespace imgbasic::host {

/// Begins with windows; to be called before the first widget is made.
void StartWindows();

/// A dialog of GIMP's with the filter's title.
class DialogWindow {
  public:
    explicit DialogWindow(const FilterRow& filter);
    ~DialogWindow() { gtk_widget_destroy(dialog_); }
    DialogWindow(const DialogWindow&) = delete;
    DialogWindow& operator=(const DialogWindow&) = delete;

    /// Puts a widget below the others.
    void Add(GtkWidget* widget);

    /// Shows the dialog until it is confirmed, true, or cancelled.
    bool Ask();

  private:
    GtkWidget* dialog_;
    GtkWidget* box_;
};

}  // namespace imgbasic::host
