#include "lib/ui/kv_win32_dialog_window.h"

#include <commctrl.h>

#include <utility>

#include "lib/base/log.h"
#include "lib/ui/module_instance.h"

namespace imgbasic {
namespace {

/// Widens a label that does not hold its text, as happens at some display scales, where the
/// font's widths and the template's units are not rounded alike.
BOOL CALLBACK FitLabel(HWND control, LPARAM /*unused*/) {
    wchar_t text[128];
    if (GetClassNameW(control, text, 128) == 0 || lstrcmpiW(text, WC_STATICW) != 0) {
        return TRUE;
    }
    const int length = GetWindowTextW(control, text, 128);
    const HDC context = GetDC(control);
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ before = SelectObject(context, font);
    SIZE size{};
    GetTextExtentPoint32W(context, text, length, &size);
    SelectObject(context, before);
    ReleaseDC(control, context);
    RECT label{};
    GetClientRect(control, &label);
    if (size.cx > label.right) {
        SetWindowPos(control, nullptr, 0, 0, size.cx, label.bottom,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return TRUE;
}

}  // namespace

KVWin32DialogItem* KVWin32DialogWindow::FindItem(int id) const {
    for (const auto& item : items_) {
        if (item->Id() == id) {
            return item.get();
        }
    }
    return nullptr;
}

void KVWin32DialogWindow::OnItemChange(int /*id*/, int /*flag*/, int32_t /*value*/) {
}

bool KVWin32DialogWindow::PreCreate(KVWin32WindowCreateInfo* info) {
    if (info == nullptr) {
        Log("[KVWin32DialogWindow::PreCreate]ウィンドウ生成情報が指定されていません。\n");
        return false;
    }
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_BAR_CLASSES | ICC_UPDOWN_CLASS};
    InitCommonControlsEx(&controls);
    return KVWin32StandardWindow::PreCreate(info);
}

bool KVWin32DialogWindow::PostCreate(KVWin32WindowCreateInfo* info) {
    auto* record = dynamic_cast<KVWin32DialogWindowCreateInfo*>(info);
    if (record == nullptr) {
        Log("[KVWin32DialogWindow::PostCreate]ウィンドウ生成情報が指定されていません。\n");
        return false;
    }
    items_ = std::move(record->items);
    // The wide function: the template's texts must not pass through the process's code page.
    dialog_ = CreateDialogParamW(ModuleInstance(), MAKEINTRESOURCEW(record->templateId), Handle(),
                                 DialogProcedure, reinterpret_cast<LPARAM>(this));
    if (dialog_ == nullptr) {
        Log("[KVWin32DialogWindow::PostCreate]ダイアログの作成に失敗した。リソースID=%d\n",
            record->templateId);
        return false;
    }
    EnumChildWindows(dialog_, FitLabel, 0);
    for (const auto& item : items_) {
        if (!item->OnInitDialog(this)) {
            return false;
        }
    }
    RECT client{};
    GetClientRect(dialog_, &client);
    PlaceClient({client.right, client.bottom});
    return KVWin32StandardWindow::PostCreate(info);
}

LRESULT KVWin32DialogWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CLOSE:
            Command(IDCANCEL);
            return 0;
        case WM_ACTIVATE:
            if (LOWORD(wParam) == WA_INACTIVE) {
                KeepFocus();
            }
            break;
        case WM_SETFOCUS:
            RestoreFocus();
            return 0;
        default:
            break;
    }
    return KVWin32StandardWindow::OnMessage(message, wParam, lParam);
}

bool KVWin32DialogWindow::TranslateKeys(MSG& message) {
    return dialog_ != nullptr && IsDialogMessageW(dialog_, &message);
}

void KVWin32DialogWindow::OnCommand(int id) {
    if (id == IDOK || id == IDCANCEL) {
        Close(id);
    }
}

INT_PTR CALLBACK KVWin32DialogWindow::DialogProcedure(HWND dialog, UINT message, WPARAM wParam,
                                                      LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        // The focus is set when the frame is shown.
        return FALSE;
    }
    auto* self = reinterpret_cast<KVWin32DialogWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (self == nullptr) {
        return FALSE;
    }
    if (message == WM_NCDESTROY) {
        self->dialog_ = nullptr;
        return FALSE;
    }
    try {
        return self->OnDialogMessage(message, wParam, lParam) ? TRUE : FALSE;
    } catch (...) {
        self->Close(IDCANCEL);
        return FALSE;
    }
}

bool KVWin32DialogWindow::OnDialogMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_COMMAND && message != WM_HSCROLL) {
        return false;
    }
    for (const auto& item : items_) {
        if (item->HandleMessage(message, wParam, lParam)) {
            return true;
        }
    }
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED) {
        return false;
    }
    Command(LOWORD(wParam));
    return true;
}

void KVWin32DialogWindow::Command(int id) {
    if (std::exchange(inCommand_, true)) {
        return;
    }
    try {
        OnCommand(id);
    } catch (...) {
        inCommand_ = false;
        throw;
    }
    inCommand_ = false;
}

void KVWin32DialogWindow::KeepFocus() {
    const HWND focus = GetFocus();
    if (IsChild(dialog_, focus)) {
        focus_ = focus;
    }
}

void KVWin32DialogWindow::RestoreFocus() {
    if (IsChild(dialog_, focus_) && IsWindowEnabled(focus_)) {
        SetFocus(focus_);
    } else if (const HWND first = GetNextDlgTabItem(dialog_, nullptr, FALSE)) {
        SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(first), TRUE);
    }
}

}  // namespace imgbasic
