#pragma once

#include <optional>

#include "lib/ui/kv_win32_dialog_window.h"
#include "plugin/imgbasic/dialogs/dialog_rules.h"
#include "plugin/imgbasic/dialogs/disabled_window.h"

namespace imgbasic {

/// The options dialog of "scaling". It has no preview; the options are the dialog's own until
/// they are confirmed.
class ScalingImageDialog final : public KVWin32DialogWindow {
  public:
    explicit ScalingImageDialog(ScalingImageProcess& process);

    /// The items that show the options.
    KVWin32DialogItemArray Items() const;

    void OnItemChange(int id, int flag, int32_t value) override;

  protected:
    bool PostCreate(KVWin32WindowCreateInfo* info) override;
    void OnBeforeDestroy() override;
    void OnCommand(int id) override;

  private:
    void ReadControls();
    void EnableControls();
    void UpdatePartner(int partner, int32_t value, int32_t ownReference, int32_t partnerReference);

    ScalingImageProcess& process_;
    ScalingOptions options_;
    std::optional<DisabledWindow> owner_;
};

}  // namespace imgbasic
