#include "tests/viewer/viewer_hand.h"

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace imgbasic::viewer {
namespace {

constexpr auto kPause = std::chrono::milliseconds(10);
constexpr int kMostPauses = 1000;
constexpr const wchar_t* kDialogClass = L"#32770";
constexpr int kTextId = 0xFFFF;  // of a message box

/// A visible message box of a process; null when there is none.
HWND BoxOf(DWORD process) {
    HWND box = nullptr;
    while ((box = FindWindowExW(nullptr, box, kDialogClass, nullptr)) != nullptr) {
        DWORD owner = 0;
        GetWindowThreadProcessId(box, &owner);
        if (owner == process && IsWindowVisible(box) != FALSE) {
            break;
        }
    }
    return box;
}

}  // namespace

std::vector<std::wstring> WithBoxesAnswered(const std::function<void()>& work, int button,
                                            DWORD process) {
    std::vector<std::wstring> texts;
    std::atomic<bool> over = false;
    std::thread hand([&] {
        while (!over) {
            std::this_thread::sleep_for(kPause);
            const HWND box = BoxOf(process);
            if (box == nullptr) {
                continue;
            }
            texts.push_back(TextIn(box) + L": " + TextIn(GetDlgItem(box, kTextId)));
            while (!over && IsWindow(box) != FALSE) {
                PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
                std::this_thread::sleep_for(kPause);
            }
        }
    });
    work();
    over = true;
    hand.join();
    return texts;
}

HWND WaitForDialog(const wchar_t* caption) {
    for (int i = 0; i < kMostPauses; ++i) {
        if (const HWND window = FindWindowW(kDialogClass, caption)) {
            return window;
        }
        std::this_thread::sleep_for(kPause);
    }
    return nullptr;
}

std::wstring TextIn(HWND control) {
    std::array<wchar_t, 2048> text{};
    DWORD_PTR length = 0;
    SendMessageTimeoutW(control, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_NORMAL, 5000, &length);
    return {text.data(), length};
}

ScreenPart ReadBack(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    ScreenPart part{client.right, client.bottom};
    part.pixels.resize(static_cast<size_t>(part.width) * static_cast<size_t>(part.height));
    BITMAPINFO info{};
    info.bmiHeader = {
        sizeof(BITMAPINFOHEADER), part.width, -part.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = GetDC(window);
    const HDC memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, part.width, part.height, screen, 0, 0, SRCCOPY);
    GdiFlush();
    for (size_t i = 0; i < part.pixels.size(); ++i) {
        part.pixels[i] = static_cast<const uint32_t*>(bits)[i] & 0xFFFFFF;
    }
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window, screen);
    return part;
}

}  // namespace imgbasic::viewer
