#include "lib/ui/kv_win32_dialog_base_item.h"

#include "lib/base/log.h"
#include "lib/ui/kv_win32_dialog_window.h"

namespace imgbasic {

void KVWin32DialogBaseItem::Enable(bool enabled) {
    enabled_ = enabled;
    EnableControl(control_, enabled);
}

bool KVWin32DialogBaseItem::OnInitDialog(KVWin32DialogWindow* dialog) {
    if (dialog == nullptr || dialog->Dialog() == nullptr) {
        Log("[KVWin32DialogBaseItem::OnInitDialog]ダイアログが生成されていません。\n");
        return false;
    }
    dialog_ = dialog;
    control_ = Find(id_);
    if (control_ == nullptr) {
        Log("[KVWin32DialogBaseItem::OnInitDialog]ダイアログにアイテムID%dが存在しません\n", id_);
        return false;
    }
    GetWindowRect(control_, &rect_);
    MapWindowPoints(nullptr, dialog->Dialog(), reinterpret_cast<POINT*>(&rect_), 2);
    return true;
}

bool KVWin32DialogBaseItem::HandleMessage(UINT /*message*/, WPARAM /*wParam*/, LPARAM /*lParam*/) {
    return false;
}

void KVWin32DialogBaseItem::EnableControl(HWND control, bool enabled) const {
    if (!enabled && control != nullptr && GetFocus() == control) {
        // A disabled control keeps the focus, but keys no longer reach it, nor through it the
        // dialog.
        SendMessageW(dialog_->Dialog(), WM_NEXTDLGCTL, 0, FALSE);
    }
    EnableWindow(control, enabled);
}

HWND KVWin32DialogBaseItem::Find(int id) const {
    return GetDlgItem(dialog_->Dialog(), id);
}

void KVWin32DialogBaseItem::NotifyChange(ItemChangeFlag flag, int32_t value) {
    if (notifies_) {
        dialog_->OnItemChange(id_, flag, value);
    }
}

}  // namespace imgbasic
