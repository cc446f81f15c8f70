#include "lib/ui/kv_win32_dialog_item_check_box.h"

namespace imgbasic {

bool KVWin32DialogItemCheckBox::OnInitDialog(KVWin32DialogWindow* dialog) {
    if (!KVWin32DialogItem::OnInitDialog(dialog)) {
        return false;
    }
    SendMessageW(Control(), BM_SETCHECK, initial_ ? BST_CHECKED : BST_UNCHECKED, 0);
    return true;
}

bool KVWin32DialogItemCheckBox::HandleMessage(UINT message, WPARAM wParam, LPARAM /*lParam*/) {
    if (message != WM_COMMAND || LOWORD(wParam) != Id()) {
        return false;
    }
    if (HIWORD(wParam) == BN_CLICKED) {
        NotifyChange(kChangedByUser, Value());
    }
    return true;
}

int32_t KVWin32DialogItemCheckBox::Value() const {
    return SendMessageW(Control(), BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0;
}

void KVWin32DialogItemCheckBox::SetValue(int32_t value, bool /*updateText*/, bool /*force*/) {
    const int32_t wanted = value != 0 ? 1 : 0;
    if (wanted != Value()) {
        SendMessageW(Control(), BM_SETCHECK, static_cast<WPARAM>(wanted), 0);
        NotifyChange(kChangedByProgram, wanted);
    }
}

}  // namespace imgbasic
