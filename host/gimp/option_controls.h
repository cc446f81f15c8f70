#pragma once

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include <functional>
#include <list>

#include "host/gimp/filter_job.h"

namespace imgbasic::host {

/// The controls of options, one below the other; each writes its value to the job.
class OptionControls {
  public:
    /// `changed` is called after every change by the user. The job outlives this.
    OptionControls(FilterJob& job, std::function<void()> changed);
    OptionControls(const OptionControls&) = delete;
    OptionControls& operator=(const OptionControls&) = delete;

    GtkWidget* Table() const { return table_; }

    /// Adds the control of an option and returns the widget that takes the input.
    GtkWidget* Add(const FilterOption& option);

  private:
    /// A control's option.
    struct Binding {
        OptionControls* controls;
        int32_t* value;

        void Set(int32_t number) const;
    };

    GtkWidget* AddNumber(const FilterOption& option, Binding& binding);
    GtkWidget* AddChoice(const FilterOption& option, Binding& binding);
    GtkWidget* AddSwitch(const FilterOption& option, Binding& binding);

    FilterJob& job_;
    std::function<void()> changed_;
    GtkWidget* table_;
    std::list<Binding> bindings_;  // the widgets hold pointers to them
    gint row_ = 0;
};

}  // namespace imgbasic::host
