#pragma once

#include "lib/ui/kv_win32_dialog_item.h"

namespace imgbasic {

/// An automatic check box; 1 is checked.
class KVWin32DialogItemCheckBox final : public KVWin32DialogItem {
  public:
    KVWin32DialogItemCheckBox(int id, bool initial) : KVWin32DialogItem(id), initial_(initial) {}

    bool OnInitDialog(KVWin32DialogWindow* dialog) override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    int32_t Value() const override;
    void SetValue(int32_t value, bool updateText, bool force) override;

  private:
    bool initial_;
};

}  // namespace imgbasic
