#pragma once

#include "lib/base/kv_array.h"
#include "lib/ui/kv_win32_dialog_item.h"

namespace imgbasic {

/// A drop-down list; its value is the selected index, -1 for none.
class KVWin32DialogItemComboBox final : public KVWin32DialogItem {
  public:
    /// The texts are Shift-JIS and must outlive the item.
    KVWin32DialogItemComboBox(int id, KVArray<const char*> texts, int32_t initial);

    bool OnInitDialog(KVWin32DialogWindow* dialog) override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    int32_t Value() const override;
    void SetValue(int32_t value, bool updateText, bool force) override;

  private:
    static LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam);
    void TellChange(ItemChangeFlag flag);

    KVArray<const char*> texts_;
    int32_t told_;  ///< the selection that the dialog knows of
    WNDPROC systemProcedure_ = nullptr;
};

}  // namespace imgbasic
