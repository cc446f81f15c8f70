#pragma once

#include <optional>
#include <vector>

#include "lib/ui/kv_win32_dialog_window.h"
#include "plugin/imgbasic/dialogs/dialog_rules.h"
#include "plugin/imgbasic/dialogs/disabled_window.h"

namespace imgbasic {

/// The options dialog of "nega", and what it has in common with every dialog with a preview: the
/// buttons, the list of targets and the options, as the host last ran with them.
class CommonImageDialog : public KVWin32DialogWindow {
  public:
    explicit CommonImageDialog(NegaImageProcess& process);

    /// The items that show the object's options.
    virtual KVWin32DialogItemArray Items() const;

  protected:
    CommonImageDialog(ImageProcess& process, std::vector<DialogOption> options);

    bool PostCreate(KVWin32WindowCreateInfo* info) override;
    void OnBeforeDestroy() override;
    void OnCommand(int id) override;

  private:
    std::vector<int32_t> ShownOptions() const;

    ImageProcess& process_;
    std::vector<DialogOption> options_;
    std::optional<DisabledWindow> owner_;
};

}  // namespace imgbasic
