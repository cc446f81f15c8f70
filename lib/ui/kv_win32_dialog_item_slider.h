#pragma once

#include "lib/ui/kv_win32_dialog_item_spin.h"

namespace imgbasic {

/// A trackbar, which is the item's control, and an edit field with an up-down control that show
/// the same number.
class KVWin32DialogItemSlider final : public KVWin32DialogItem {
  public:
    KVWin32DialogItemSlider(int id, int32_t initial, int32_t minimum, int32_t maximum, int editId,
                            int spinId);

    void Enable(bool enabled) override;
    bool OnInitDialog(KVWin32DialogWindow* dialog) override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetRange(int32_t minimum, int32_t maximum, bool redraw) override;
    /// The trackbar's position.
    int32_t Value() const override;
    void SetValue(int32_t value, bool updateText, bool force) override;

  private:
    void SetTrackbarRange(bool redraw);
    /// Brings the trackbar to the number beside it.
    void Follow(ItemChangeFlag flag);

    int editId_;
    int32_t minimum_;
    int32_t maximum_;
    KVWin32DialogItemSpin spin_;
};

}  // namespace imgbasic
