#include "lib/ui/kv_win32_window.h"

#include <utility>

#include "lib/ui/module_instance.h"

namespace imgbasic {
namespace {

/// Before its contents are known; large enough for the system not to squeeze the frame.
constexpr int kFirstSize = 500;

/// The corner of the owner's monitor. A window has the scale of the monitor on which it is
/// created, and with it what is created inside.
POINT FirstPlace(HWND owner) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTOPRIMARY), &monitor);
    return {monitor.rcWork.left, monitor.rcWork.top};
}

}  // namespace

KVWin32Window::~KVWin32Window() {
    if (handle_ != nullptr) {
        // What is left of the object has nothing more to say to the window's messages.
        SetWindowLongPtrW(handle_, GWLP_USERDATA, 0);
        DestroyWindow(handle_);
    }
    if (!className_.empty()) {
        // A class outlives its module, and with it the procedure that it names. As long as
        // another window uses it, this fails.
        UnregisterClassW(className_.c_str(), ModuleInstance());
    }
}

bool KVWin32Window::Create(KVWin32WindowCreateInfo* info) {
    try {
        if (PreCreate(info) && PostCreate(info)) {
            return true;
        }
    } catch (...) {
        Destroy();
        throw;
    }
    Destroy();
    return false;
}

bool KVWin32Window::PreCreate(KVWin32WindowCreateInfo* info) {
    if (info == nullptr) {
        return false;
    }
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = ModuleInstance();
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = info->className.c_str();
    if (RegisterClassExW(&windowClass) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
        return false;
    }
    className_ = info->className;
    const HWND owner = IsWindow(info->owner) ? info->owner : nullptr;
    const POINT place = FirstPlace(owner);
    return CreateWindowExW(info->exStyle, className_.c_str(), info->title.c_str(), info->style,
                           place.x, place.y, kFirstSize, kFirstSize, owner, nullptr,
                           ModuleInstance(), this) != nullptr;
}

bool KVWin32Window::PostCreate(KVWin32WindowCreateInfo* /*info*/) {
    return true;
}

LRESULT KVWin32Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(handle_, message, wParam, lParam);
}

void KVWin32Window::Destroy() {
    if (handle_ != nullptr) {
        // Before the system looks for the window to activate next.
        BeforeDestroy();
        DestroyWindow(handle_);
    }
}

void KVWin32Window::BeforeDestroy() {
    if (!std::exchange(leaving_, true)) {
        OnBeforeDestroy();
    }
}

LRESULT CALLBACK KVWin32Window::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* created = static_cast<KVWin32Window*>(
            reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        created->handle_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* self = reinterpret_cast<KVWin32Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    LRESULT result = 0;
    try {
        if (message == WM_DESTROY) {
            self->BeforeDestroy();
        }
        result = self->OnMessage(message, wParam, lParam);
    } catch (...) {
        self->OnException();
    }
    if (message == WM_NCDESTROY) {
        self->handle_ = nullptr;
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    }
    return result;
}

}  // namespace imgbasic
