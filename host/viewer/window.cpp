#include "host/viewer/window.h"

#include <cstdint>
#include <stdexcept>

#include "host/viewer/messages.h"

namespace imgbasic::viewer {

Window::~Window() {
    if (handle_ != nullptr) {
        SetWindowLongPtrW(handle_, GWLP_USERDATA, 0);
        DestroyWindow(handle_);
    }
}

int Window::Scaled(int length) const {
    return MulDiv(length, static_cast<int>(GetDpiForWindow(handle_)), USER_DEFAULT_SCREEN_DPI);
}

void Window::Create(const WindowForm& form) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    windowClass.lpszClassName = form.className;
    RegisterClassExW(&windowClass);  // fails where it is known already
    CreateWindowExW(form.exStyle, form.className, form.title, form.style, CW_USEDEFAULT,
                    CW_USEDEFAULT, form.size.cx, form.size.cy, form.parent, form.menu,
                    windowClass.hInstance, this);
    RequireWindow(handle_);
}

LRESULT Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(handle_, message, wParam, lParam);
}

SIZE Window::ClientSize() const {
    RECT client{};
    GetClientRect(handle_, &client);
    return {client.right, client.bottom};
}

LRESULT CALLBACK Window::Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* const created = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        static_cast<Window*>(created->lpCreateParams)->handle_ = handle;
        SetWindowLongPtrW(handle, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(created->lpCreateParams));
    }
    auto* const window = reinterpret_cast<Window*>(GetWindowLongPtrW(handle, GWLP_USERDATA));
    if (window == nullptr) {
        return DefWindowProcW(handle, message, wParam, lParam);
    }
    if (message == WM_NCDESTROY) {
        window->handle_ = nullptr;
        return DefWindowProcW(handle, message, wParam, lParam);
    }
    try {
        return window->OnMessage(message, wParam, lParam);
    } catch (const std::exception&) {
        ShowBox(handle, phrases::kCannotDo, FaultText(), MB_ICONERROR);
    }
    return 0;
}

void RequireWindow(HWND created) {
    if (created == nullptr) {
        throw std::runtime_error("the system gives no window; close other programs");
    }
}

HFONT MessageFont(HWND window) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0,
                               GetDpiForWindow(window));
    return CreateFontIndirectW(&metrics.lfMessageFont);
}

HWND AddControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id) {
    return CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<intptr_t>(id)),
                           GetModuleHandleW(nullptr), nullptr);
}

}  // namespace imgbasic::viewer
