#include "lib/ui/kv_win32_standard_window.h"

#include <algorithm>
#include <cstdio>

namespace imgbasic {
namespace {

constexpr char kApplicationKey[] = "Software\\orvex\\KVApp";
constexpr char kPlacementValue[] = "ClientRect";

std::string PlacementKeyOf(const KVWin32WindowCreateInfo& info) {
    if (!info.rememberPlacement) {
        return {};
    }
    if (info.parent == nullptr || info.parent->PlacementKey().empty()) {
        return kApplicationKey;
    }
    char number[16];
    std::snprintf(number, sizeof number, "\\%04x", static_cast<unsigned>(info.childNumber));
    return info.parent->PlacementKey() + number;
}

/// Opens the key of a placement, for `use(key)`.
template <typename Use>
void WithPlacementKey(const std::string& path, REGSAM access, Use&& use) {
    HKEY key = nullptr;
    if (!path.empty() &&
        RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        access, nullptr, &key, nullptr) == ERROR_SUCCESS) {
        use(key);
        RegCloseKey(key);
    }
}

RECT ReadPlacement(const std::string& path) {
    RECT rect{};
    WithPlacementKey(path, KEY_READ, [&](HKEY key) {
        RECT stored{};
        DWORD size = sizeof stored;
        if (RegQueryValueExA(key, kPlacementValue, nullptr, nullptr,
                             reinterpret_cast<BYTE*>(&stored), &size) == ERROR_SUCCESS &&
            size == sizeof stored) {
            rect = stored;
        }
    });
    return rect;
}

void WritePlacement(const std::string& path, const RECT& rect) {
    WithPlacementKey(path, KEY_WRITE, [&](HKEY key) {
        RegSetValueExA(key, kPlacementValue, 0, REG_BINARY, reinterpret_cast<const BYTE*>(&rect),
                       sizeof rect);
    });
}

RECT ClientOnScreen(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
    return client;
}

/// The part of the screen, without the task bar, on which the rectangle mostly is.
RECT WorkAreaAround(const RECT& rect) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromRect(&rect, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

}  // namespace

int KVWin32StandardWindow::RunModal() {
    ShowWindow(Handle(), SW_SHOW);
    while (!endCode_ && Handle() != nullptr) {
        MSG message;
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got <= 0) {
            if (got == 0) {
                // The end of the program is for the caller's message loop to see as well.
                PostQuitMessage(static_cast<int>(message.wParam));
            }
            break;
        }
        if (!TranslateKeys(message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    Destroy();
    return endCode_.value_or(IDCANCEL);
}

void KVWin32StandardWindow::Close(int endCode) {
    if (!endCode_) {
        endCode_ = endCode;
        // A message sent by another thread closes it while the loop waits for one that is posted.
        PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
    }
}

bool KVWin32StandardWindow::PreCreate(KVWin32WindowCreateInfo* info) {
    if (info != nullptr) {
        placementKey_ = PlacementKeyOf(*info);
        rememberedClient_ = ReadPlacement(placementKey_);
    }
    return KVWin32Window::PreCreate(info);
}

void KVWin32StandardWindow::OnBeforeDestroy() {
    if (!placementKey_.empty()) {
        WritePlacement(placementKey_, ClientOnScreen(Handle()));
    }
}

LRESULT KVWin32StandardWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        Close(IDCANCEL);
        return 0;
    }
    if (message == WM_NCDESTROY) {
        Close(IDCANCEL);
    }
    return KVWin32Window::OnMessage(message, wParam, lParam);
}

bool KVWin32StandardWindow::TranslateKeys(MSG& /*message*/) {
    return false;
}

void KVWin32StandardWindow::PlaceClient(SIZE client) {
    RECT frame{};
    GetWindowRect(Handle(), &frame);
    const RECT inside = ClientOnScreen(Handle());
    const LONG width = client.cx + (frame.right - frame.left) - (inside.right - inside.left);
    const LONG height = client.cy + (frame.bottom - frame.top) - (inside.bottom - inside.top);

    const HWND owner = GetWindow(Handle(), GW_OWNER);
    RECT around{};
    if (owner == nullptr || IsIconic(owner) || !GetWindowRect(owner, &around)) {
        around = WorkAreaAround(frame);
    }
    LONG left = (around.left + around.right - width) / 2;
    LONG top = (around.top + around.bottom - height) / 2;
    if (!IsRectEmpty(&rememberedClient_)) {
        around = rememberedClient_;
        left = rememberedClient_.left - (inside.left - frame.left);
        top = rememberedClient_.top - (inside.top - frame.top);
    }
    const RECT work = WorkAreaAround(around);
    left = std::max(std::min(left, work.right - width), work.left);
    top = std::max(std::min(top, work.bottom - height), work.top);
    SetWindowPos(Handle(), nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace imgbasic
