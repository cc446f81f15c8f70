#include "host/viewer/progress_window.h"

#include <commctrl.h>

#include <utility>

#include "host/viewer/texts.h"

namespace imgbasic::viewer {
namespace {

constexpr SIZE kSize{520, 300};
constexpr int kMargin = 12;
constexpr int kLineHeight = 22;
constexpr int kButtonWidth = 110;
constexpr int kButtonHeight = 30;

}  // namespace

ProgressWindow::ProgressWindow(HWND owner) : owner_(owner) {
    Create({.className = L"imgbasic progress",
            .title = TextOf(TextId::AppName),
            .style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN,
            .exStyle = WS_EX_DLGMODALFRAME,
            .parent = owner});
    text_ = AddControl(Handle(), WC_STATICW, L"", SS_NOPREFIX | SS_ENDELLIPSIS, -1);
    bar_ = AddControl(Handle(), PROGRESS_CLASSW, L"", 0, -1);
    lines_ = AddControl(Handle(), WC_EDITW, L"",
                        WS_TABSTOP | WS_BORDER | WS_VSCROLL | ES_MULTILINE | ES_READONLY, -1);
    button_ = AddControl(Handle(), WC_BUTTONW, TextOf(TextId::Cancel),
                         WS_TABSTOP | BS_DEFPUSHBUTTON, IDCANCEL);
    RECT place{};
    GetWindowRect(owner, &place);
    const SIZE size{Scaled(kSize.cx), Scaled(kSize.cy)};
    SetWindowPos(Handle(), nullptr, (place.left + place.right - size.cx) / 2,
                 (place.top + place.bottom - size.cy) / 2, size.cx, size.cy, SWP_NOZORDER);
    Layout();
    EnableWindow(owner_, FALSE);
    ShowWindow(Handle(), SW_SHOW);
    SetFocus(button_);
}

ProgressWindow::~ProgressWindow() {
    EnableWindow(owner_, TRUE);  // before this window goes, so that its owner becomes active
    SetForegroundWindow(owner_);
    DeleteObject(font_);
}

bool ProgressWindow::Tell(const std::wstring& text, size_t done, size_t total) {
    SetWindowTextW(text_, text.c_str());
    SendMessageW(bar_, PBM_SETRANGE32, 0, static_cast<LPARAM>(total));
    SendMessageW(bar_, PBM_SETPOS, done, 0);
    MSG message;
    while (!stopped_ && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        Dispatch(message);
    }
    return !stopped_;
}

void ProgressWindow::Report(const std::wstring& headline, const std::wstring& lines) {
    stopped_ = false;
    SetWindowTextW(text_, headline.c_str());
    SetWindowTextW(lines_, lines.c_str());
    SetWindowTextW(button_, TextOf(TextId::Close));
    MSG message;
    while (!stopped_ && GetMessageW(&message, nullptr, 0, 0) > 0) {
        Dispatch(message);
    }
}

void ProgressWindow::Dispatch(MSG& message) {
    if (IsDialogMessageW(Handle(), &message) == FALSE) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

LRESULT ProgressWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            stopped_ = stopped_ || LOWORD(wParam) == IDCANCEL || LOWORD(wParam) == IDOK;
            return 0;
        case WM_CLOSE:
            stopped_ = true;
            return 0;
        case WM_DPICHANGED:
            Layout();
            return 0;
        default:
            return Window::OnMessage(message, wParam, lParam);
    }
}

void ProgressWindow::Layout() {
    DeleteObject(std::exchange(font_, MessageFont(Handle())));
    for (const HWND control : {text_, lines_, button_}) {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    }
    const SIZE client = ClientSize();
    const int margin = Scaled(kMargin);
    const int line = Scaled(kLineHeight);
    const int width = client.cx - 2 * margin;
    const int buttonTop = client.cy - margin - Scaled(kButtonHeight);
    const int linesTop = 3 * margin + 2 * line;
    MoveWindow(text_, margin, margin, width, line, TRUE);
    MoveWindow(bar_, margin, 2 * margin + line, width, line, TRUE);
    MoveWindow(lines_, margin, linesTop, width, buttonTop - margin - linesTop, TRUE);
    MoveWindow(button_, client.cx - margin - Scaled(kButtonWidth), buttonTop, Scaled(kButtonWidth),
               Scaled(kButtonHeight), TRUE);
}

}  // namespace imgbasic::viewer
