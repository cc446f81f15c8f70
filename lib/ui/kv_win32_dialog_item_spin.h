#pragma once

#include "lib/ui/kv_win32_dialog_item.h"

namespace imgbasic {

/// A number in an edit field with an up-down control beside it, which is the item's control and
/// sets the field's text by itself. The value is the last acceptable one, whatever is being typed.
class KVWin32DialogItemSpin final : public KVWin32DialogItem {
  public:
    KVWin32DialogItemSpin(int id, int32_t initial, int32_t minimum, int32_t maximum, int editId);

    /// Enables the field along with the up-down control.
    void Enable(bool enabled) override;
    bool OnInitDialog(KVWin32DialogWindow* dialog) override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetRange(int32_t minimum, int32_t maximum, bool redraw) override;
    int32_t Value() const override { return value_; }
    void SetValue(int32_t value, bool updateText, bool force) override;

  private:
    /// Takes over what is typed.
    void Accept(bool leaving);
    /// Makes this the value, without touching the field's text.
    void Change(int32_t value, ItemChangeFlag flag);
    void WriteText();

    int editId_;
    int32_t value_;
    int32_t minimum_;
    int32_t maximum_;
    HWND edit_ = nullptr;
    bool writing_ = false;  ///< the field changes by our own doing
};

}  // namespace imgbasic
