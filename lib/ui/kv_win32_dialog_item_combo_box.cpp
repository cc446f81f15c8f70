#include "lib/ui/kv_win32_dialog_item_combo_box.h"

#include <utility>

#include "lib/base/wide_text.h"

namespace imgbasic {

KVWin32DialogItemComboBox::KVWin32DialogItemComboBox(int id, KVArray<const char*> texts,
                                                     int32_t initial)
    : KVWin32DialogItem(id), texts_(std::move(texts)), told_(initial) {
}

bool KVWin32DialogItemComboBox::OnInitDialog(KVWin32DialogWindow* dialog) {
    if (!KVWin32DialogItem::OnInitDialog(dialog)) {
        return false;
    }
    for (const char* text : texts_) {
        SendMessageW(Control(), CB_ADDSTRING, 0,
                     reinterpret_cast<LPARAM>(WideFromShiftJis(text).c_str()));
    }
    SendMessageW(Control(), CB_SETCURSEL, static_cast<WPARAM>(told_), 0);
    SetWindowLongPtrW(Control(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    systemProcedure_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(Control(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    return true;
}

/// A list that a program sets from outside, as aids for people do, says nothing to the dialog of
/// its own accord.
LRESULT CALLBACK KVWin32DialogItemComboBox::Procedure(HWND control, UINT message, WPARAM wParam,
                                                      LPARAM lParam) {
    auto* self =
        reinterpret_cast<KVWin32DialogItemComboBox*>(GetWindowLongPtrW(control, GWLP_USERDATA));
    const LRESULT result =
        CallWindowProcW(self->systemProcedure_, control, message, wParam, lParam);
    if (message == CB_SETCURSEL) {
        try {
            self->TellChange(kChangedByUser);
        } catch (...) {
            // The selection stands; what follows from it is made up for on the next change.
        }
    }
    return result;
}

bool KVWin32DialogItemComboBox::HandleMessage(UINT message, WPARAM wParam, LPARAM /*lParam*/) {
    if (message != WM_COMMAND || LOWORD(wParam) != Id()) {
        return false;
    }
    switch (HIWORD(wParam)) {
        case CBN_SELCHANGE:
        // An open list that is left by Escape takes its selection back without a word.
        case CBN_SELENDCANCEL:
        case CBN_CLOSEUP:
            TellChange(kChangedByUser);
            break;
        default:
            break;
    }
    return true;
}

int32_t KVWin32DialogItemComboBox::Value() const {
    return static_cast<int32_t>(SendMessageW(Control(), CB_GETCURSEL, 0, 0));
}

void KVWin32DialogItemComboBox::SetValue(int32_t value, bool /*updateText*/, bool /*force*/) {
    CallWindowProcW(systemProcedure_, Control(), CB_SETCURSEL, static_cast<WPARAM>(value), 0);
    TellChange(kChangedByProgram);
}

void KVWin32DialogItemComboBox::TellChange(ItemChangeFlag flag) {
    const int32_t selected = Value();
    if (std::exchange(told_, selected) != selected) {
        NotifyChange(flag, selected);
    }
}

}  // namespace imgbasic
