#include "lib/ui/kv_win32_dialog_item_slider.h"

#include <commctrl.h>

#include "lib/base/log.h"

namespace imgbasic {

KVWin32DialogItemSlider::KVWin32DialogItemSlider(int id, int32_t initial, int32_t minimum,
                                                 int32_t maximum, int editId, int spinId)
    : KVWin32DialogItem(id),
      editId_(editId),
      minimum_(minimum),
      maximum_(maximum),
      spin_(spinId, initial, minimum, maximum, editId) {
    // The dialog knows of the slider only.
    spin_.SetNotifies(false);
}

void KVWin32DialogItemSlider::Enable(bool enabled) {
    KVWin32DialogItem::Enable(enabled);
    spin_.Enable(enabled);
}

bool KVWin32DialogItemSlider::OnInitDialog(KVWin32DialogWindow* dialog) {
    if (!KVWin32DialogItem::OnInitDialog(dialog)) {
        return false;
    }
    if (Find(editId_) == nullptr) {
        Log("[KVWin32DialogItemSlider::OnInitDialog]ダイアログアイテム%dが取得できません。\n",
            editId_);
        return false;
    }
    // Ahead of the field, whose first text is then no change.
    SetTrackbarRange(false);
    SendMessageW(Control(), TBM_SETPOS, TRUE, spin_.Value());
    return spin_.OnInitDialog(dialog);
}

bool KVWin32DialogItemSlider::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_HSCROLL && Control() != nullptr &&
        reinterpret_cast<HWND>(lParam) == Control()) {
        if (Value() != spin_.Value()) {
            spin_.SetValue(Value(), true, false);
            NotifyChange(kChangedByUser, Value());
        }
        return true;
    }
    const int32_t before = spin_.Value();
    if (!spin_.HandleMessage(message, wParam, lParam)) {
        return false;
    }
    if (spin_.Value() != before) {
        Follow(kChangedByUser);
    }
    return true;
}

void KVWin32DialogItemSlider::SetRange(int32_t minimum, int32_t maximum, bool redraw) {
    minimum_ = minimum;
    maximum_ = maximum;
    SetTrackbarRange(redraw);
    spin_.SetRange(minimum, maximum, redraw);
}

void KVWin32DialogItemSlider::SetTrackbarRange(bool redraw) {
    SendMessageW(Control(), TBM_SETRANGEMIN, FALSE, minimum_);
    SendMessageW(Control(), TBM_SETRANGEMAX, redraw, maximum_);
}

int32_t KVWin32DialogItemSlider::Value() const {
    return static_cast<int32_t>(SendMessageW(Control(), TBM_GETPOS, 0, 0));
}

void KVWin32DialogItemSlider::SetValue(int32_t value, bool updateText, bool force) {
    spin_.SetValue(value, updateText, force);
    Follow(kChangedByProgram);
}

void KVWin32DialogItemSlider::Follow(ItemChangeFlag flag) {
    if (Value() != spin_.Value()) {
        SendMessageW(Control(), TBM_SETPOS, TRUE, spin_.Value());
        NotifyChange(flag, spin_.Value());
    }
}

}  // namespace imgbasic
