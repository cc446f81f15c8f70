#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include <exception>
#include <optional>
#include <utility>

#include "host/gimp/dialog.h"
#include "host/gimp/dialog_window.h"
#include "host/gimp/option_controls.h"
#include "host/gimp/words.h"

namespace imgbasic::host {
namespace {

constexpr guint kPreviewDelay = 150;  ///< milliseconds without a change

/// The result for the options as they are, shown in the image while the user wants to see it.
class Preview {
  public:
    Preview(const Module& module, const FilterJob& job) : module_(module), job_(job) {
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(check_), TRUE);
        g_signal_connect_swapped(check_, "toggled",
                                 G_CALLBACK(+[](Preview* self) { self->Refresh(); }), this);
        Refresh();
    }
    ~Preview() { StopTimer(); }
    Preview(const Preview&) = delete;
    Preview& operator=(const Preview&) = delete;

    GtkWidget* Check() const { return check_; }

    /// Shows the result as soon as the user pauses.
    void Refresh() {
        StopTimer();
        timer_ = g_timeout_add(
            kPreviewDelay,
            +[](gpointer self) -> gboolean {
                static_cast<Preview*>(self)->Update();
                return G_SOURCE_REMOVE;
            },
            this);
    }

    /// What OK applies, run anew only where the options are others than those of what is shown.
    std::unique_ptr<TargetRun> Take() {
        StopTimer();
        RunAgainIfChanged();
        return std::move(run_);
    }

  private:
    void StopTimer() {
        if (timer_ != 0) {
            g_source_remove(std::exchange(timer_, 0));
        }
    }

    void RunAgainIfChanged() {
        if (run_ == nullptr || values_ != job_.values) {
            run_.reset();
            run_ = std::make_unique<TargetRun>(module_, job_);
            values_ = job_.values;
        }
    }

    void Update() {
        timer_ = 0;
        try {
            if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(check_))) {
                RunAgainIfChanged();
                run_->Show();
            } else if (run_ != nullptr) {
                run_->Hide();
            }
        } catch (const std::exception& fault) {
            // Not again for every change.
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(check_), FALSE);
            g_message("%s", fault.what());
        }
    }

    const Module& module_;
    const FilterJob& job_;
    GtkWidget* check_ = gtk_check_button_new_with_mnemonic(TextOf(Label::Preview));
    std::unique_ptr<TargetRun> run_;
    std::vector<int32_t> values_;  ///< what `run_` ran with
    guint timer_ = 0;
};

}  // namespace

std::unique_ptr<TargetRun> AskOptions(const Module& module, FilterJob& job) {
    StartWindows();
    DialogWindow dialog(*job.filter);
    Preview preview(module, job);
    OptionControls controls(job, [&preview] { preview.Refresh(); });
    for (const FilterOption& option : job.filter->options) {
        controls.Add(option);
    }
    dialog.Add(controls.Table());
    dialog.Add(preview.Check());
    return dialog.Ask() ? preview.Take() : nullptr;
}

}  // namespace imgbasic::host
