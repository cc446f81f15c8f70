#include "host/viewer/progress_window.h"

#include <commctrl.h>

#include "host/viewer/phrases.h"
#include "host/viewer/resource.h"
#include "host/viewer/window.h"

namespace imgbasic::viewer {

ProgressWindow::ProgressWindow(HWND owner)
    : owner_(owner),
      handle_(CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_PROGRESS), owner,
                                 Procedure, reinterpret_cast<LPARAM>(this))) {
    RequireWindow(handle_);
    SetWindowTextW(handle_, phrases::kAppName.Get());
    SetDlgItemTextW(handle_, IDCANCEL, phrases::kCancel.Get());
    EnableWindow(owner_, FALSE);
    ShowWindow(handle_, SW_SHOW);
}

ProgressWindow::~ProgressWindow() {
    EnableWindow(owner_, TRUE);  // before this window goes, so that its owner becomes active
    DestroyWindow(handle_);
}

bool ProgressWindow::Tell(const std::wstring& text, size_t done, size_t total) {
    SetDlgItemTextW(handle_, IDC_PROGRESS_TEXT, text.c_str());
    SendDlgItemMessageW(handle_, IDC_PROGRESS_BAR, PBM_SETRANGE32, 0, static_cast<LPARAM>(total));
    SendDlgItemMessageW(handle_, IDC_PROGRESS_BAR, PBM_SETPOS, done, 0);
    MSG message;
    while (!stopped_ && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        Dispatch(message);
    }
    return !stopped_;
}

void ProgressWindow::Report(const std::wstring& headline, const std::wstring& lines) {
    stopped_ = false;
    SetDlgItemTextW(handle_, IDC_PROGRESS_TEXT, headline.c_str());
    SetDlgItemTextW(handle_, IDC_PROGRESS_LINES, lines.c_str());
    ShowWindow(GetDlgItem(handle_, IDC_PROGRESS_BAR), SW_HIDE);
    SetDlgItemTextW(handle_, IDCANCEL, phrases::kClose.Get());
    MSG message;
    while (!stopped_ && GetMessageW(&message, nullptr, 0, 0) > 0) {
        Dispatch(message);
    }
}

void ProgressWindow::Dispatch(MSG& message) {
    if (IsDialogMessageW(handle_, &message) == FALSE) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

INT_PTR CALLBACK ProgressWindow::Procedure(HWND handle, UINT message, WPARAM wParam,
                                           LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(handle, DWLP_USER, lParam);
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        auto* const window =
            reinterpret_cast<ProgressWindow*>(GetWindowLongPtrW(handle, DWLP_USER));
        window->stopped_ = true;
        return TRUE;
    }
    return FALSE;
}

}  // namespace imgbasic::viewer
