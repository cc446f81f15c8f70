#pragma once

#include "lib/ui/kv_win32_dialog_item.h"

namespace imgbasic {

/// A group of automatic radio buttons with consecutive identifiers, known by the first one; its
/// value is the index of the checked button, -1 for none.
class KVWin32DialogItemAutoRadioButton final : public KVWin32DialogItem {
  public:
    KVWin32DialogItemAutoRadioButton(int firstId, int lastId, int32_t initial)
        : KVWin32DialogItem(firstId), lastId_(lastId), initial_(initial) {}

    void Enable(bool enabled) override;
    bool OnInitDialog(KVWin32DialogWindow* dialog) override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    int32_t Value() const override;
    void SetValue(int32_t value, bool updateText, bool force) override;

  private:
    void Check(int32_t index);

    int lastId_;
    int32_t initial_;
};

}  // namespace imgbasic
