#include "lib/ui/kv_win32_dialog_item_auto_radio_button.h"

#include <algorithm>

#include "lib/base/log.h"

namespace imgbasic {

void KVWin32DialogItemAutoRadioButton::Enable(bool enabled) {
    KVWin32DialogItem::Enable(enabled);
    for (int id = Id() + 1; id <= lastId_; ++id) {
        EnableControl(Find(id), enabled);
    }
}

bool KVWin32DialogItemAutoRadioButton::OnInitDialog(KVWin32DialogWindow* dialog) {
    if (!KVWin32DialogItem::OnInitDialog(dialog)) {
        return false;
    }
    for (int id = Id(); id <= lastId_; ++id) {
        // No window has the style 0, which is not that of these buttons.
        const LONG style = GetWindowLongW(Find(id), GWL_STYLE);
        if ((style & BS_TYPEMASK) != BS_AUTORADIOBUTTON) {
            Log("[KVWin32DialogItemAutoRadioButton::OnInitDialog]"
                "アイテムID%dは自動ラジオボタンではありません。\n",
                id);
            return false;
        }
    }
    Check(initial_);
    return true;
}

bool KVWin32DialogItemAutoRadioButton::HandleMessage(UINT message, WPARAM wParam,
                                                     LPARAM /*lParam*/) {
    const int id = LOWORD(wParam);
    if (message != WM_COMMAND || id < Id() || id > lastId_) {
        return false;
    }
    if (HIWORD(wParam) == BN_CLICKED) {
        NotifyChange(kChangedByUser, Value());
    }
    return true;
}

int32_t KVWin32DialogItemAutoRadioButton::Value() const {
    for (int id = Id(); id <= lastId_; ++id) {
        if (SendMessageW(Find(id), BM_GETCHECK, 0, 0) == BST_CHECKED) {
            return id - Id();
        }
    }
    return -1;
}

void KVWin32DialogItemAutoRadioButton::SetValue(int32_t value, bool /*updateText*/,
                                                bool /*force*/) {
    const int32_t wanted = std::clamp(value, 0, lastId_ - Id());
    if (wanted != Value()) {
        Check(wanted);
        NotifyChange(kChangedByProgram, wanted);
    }
}

void KVWin32DialogItemAutoRadioButton::Check(int32_t index) {
    for (int id = Id(); id <= lastId_; ++id) {
        SendMessageW(Find(id), BM_SETCHECK, id - Id() == index ? BST_CHECKED : BST_UNCHECKED, 0);
    }
}

}  // namespace imgbasic
