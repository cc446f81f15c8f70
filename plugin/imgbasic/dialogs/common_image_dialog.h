#pragma once

#include <optional>
#include <vector>

#include "lib/ui/kv_win32_dialog_window.h"
#include "plugin/imgbasic/dialogs/dialog_rules.h"
#include "plugin/imgbasic/dialogs/disabled_window.h"

namespace imgbasic {

/// The options dialog of a filter with a preview: a control for each option of its row, and the
/// buttons.
class CommonImageDialog final : public KVWin32DialogWindow {
  public:
    CommonImageDialog(ImageProcess& process, const FilterRow& filter);

    /// The items that show the object's options.
    KVWin32DialogItemArray Items() const;

  protected:
    bool PostCreate(KVWin32WindowCreateInfo* info) override;
    void OnBeforeDestroy() override;
    void OnCommand(int id) override;

  private:
    std::vector<int32_t> ShownOptions() const;

    ImageProcess& process_;
    const FilterRow& filter_;
    PreviewedOptions options_;
    std::optional<DisabledWindow> owner_;
};

}  // namespace imgbasic
