#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace imgbasic::viewer {

/// Does `work` while another thread presses `button` in every message box that comes up; what the
/// boxes said, each behind its caption and a colon.
std::vector<std::wstring> WithBoxesAnswered(const std::function<void()>& work, int button,
                                            DWORD process = GetCurrentProcessId());

/// Waits for a dialog with this caption; null after some seconds.
HWND WaitForDialog(const wchar_t* caption);

/// The text of a control of whatever thread.
std::wstring TextIn(HWND control);

/// What a window shows on the screen, as 0x00RRGGBB, row by row.
struct ScreenPart {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels{};
};
ScreenPart ReadBack(HWND window);

}  // namespace imgbasic::viewer
