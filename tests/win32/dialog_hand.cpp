#include "tests/win32/dialog_hand.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <thread>
#include <utility>

#include "lib/base/wide_text.h"
#include "plugin/imgbasic/filter_table.h"

namespace imgbasic {
namespace {

constexpr UINT kSendMilliseconds = 5000;

/// Whether the condition comes true within a few seconds.
bool Until(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64];
    return {name, static_cast<size_t>(GetClassNameW(window, name, 64))};
}

/// A window of the dialog's thread that counts the messages that get through to it.
HWND pulse = nullptr;
std::atomic<int> pulses = 0;

LRESULT CALLBACK CountPulses(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    pulses += message == WM_APP ? 1 : 0;
    return DefWindowProcW(window, message, wParam, lParam);
}

/// Waits until the dialog's thread has handled whatever is in its queue now.
bool GetThrough(HWND frame) {
    const int before = pulses;
    PostMessageW(pulse, WM_APP, 0, 0);
    return Until([&] { return pulses != before || !IsWindow(frame); });
}

void Drive(const std::wstring& caption, const std::atomic<bool>& over, const Script& script) {
    HWND frame = nullptr;
    HWND dialog = nullptr;
    const bool found = Until([&] {
        frame = FindWindowW(L"brelo2 plugin", caption.c_str());
        dialog = FindWindowExW(frame, nullptr, L"#32770", nullptr);
        return over || (dialog != nullptr && IsWindowVisible(frame));
    });
    EXPECT_TRUE(found && dialog != nullptr) << "the dialog does not show";
    if (dialog != nullptr && GetThrough(frame)) {
        script({frame, dialog});
    }
    if (Until([&] { return over || !IsWindow(frame); })) {
        return;
    }
    ADD_FAILURE() << "the dialog is still open";
    PostMessageW(frame, WM_CLOSE, 0, 0);
    if (!Until([&] { return !IsWindow(frame); })) {
        std::puts("the dialog cannot be closed");
        std::fflush(stdout);
        std::_Exit(3);
    }
}

}  // namespace

bool WithHand(const char* filter, const std::function<bool()>& open, const Script& script) {
    const std::wstring caption = WideFromUtf8(FindFilter(filter)->displayName.utf8);
    pulse =
        CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(pulse, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountPulses));
    std::atomic<bool> over = false;
    std::thread hand([&] { Drive(caption, over, script); });
    const bool result = open();
    over = true;
    hand.join();
    DestroyWindow(pulse);
    return result;
}

std::wstring DialogHand::Look() const {
    std::set<int> ids;
    for (HWND control = GetWindow(dialog_, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        ids.insert(GetDlgCtrlID(control));
    }
    std::wstring shown;
    for (const int id : ids) {
        if (id > 0 && id < 0xFFFF) {
            shown += (shown.empty() ? L"" : L" ") + std::to_wstring(id) + L"=" + Look(id);
        }
    }
    return shown;
}

std::wstring DialogHand::Look(int id) const {
    const HWND control = Control(id);
    const std::wstring name = ClassOf(control);
    const LONG style = GetWindowLongW(control, GWL_STYLE);
    wchar_t text[128] = L"";
    Send(control, WM_GETTEXT, 128, reinterpret_cast<LPARAM>(text));
    std::wstring shown = text;
    if (name == TRACKBAR_CLASSW) {
        shown = std::to_wstring(Send(control, TBM_GETPOS, 0, 0));
    } else if (name == UPDOWN_CLASSW) {
        shown = std::to_wstring(Send(control, UDM_GETPOS32, 0, 0));
    } else if (name == L"Button" && (style & BS_TYPEMASK) > BS_DEFPUSHBUTTON) {
        shown = std::to_wstring(Send(control, BM_GETCHECK, 0, 0));
    }
    return IsWindowEnabled(control) ? shown : L"(" + shown + L")";
}

int DialogHand::Focused() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(frame_, nullptr), &info);
    return IsChild(dialog_, info.hwndFocus) ? GetDlgCtrlID(info.hwndFocus) : 0;
}

void DialogHand::Pick(int id, int index) const {
    Send(Control(id), CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    Send(dialog_, WM_COMMAND, static_cast<WPARAM>(MAKELONG(id, CBN_SELCHANGE)),
         reinterpret_cast<LPARAM>(Control(id)));
}

void DialogHand::Slide(int id, int position) const {
    Send(Control(id), TBM_SETPOS, TRUE, position);
    Send(dialog_, WM_HSCROLL, static_cast<WPARAM>(MAKELONG(TB_THUMBTRACK, position)),
         reinterpret_cast<LPARAM>(Control(id)));
}

void DialogHand::Focus(int id) const {
    Send(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(id)), TRUE);
}

void DialogHand::Type(int id, const std::wstring& text) const {
    Focus(id);
    Send(Control(id), EM_SETSEL, 0, -1);
    Send(Control(id), WM_CLEAR, 0, 0);
    for (const wchar_t c : text) {
        Send(Control(id), WM_CHAR, c, 0);
    }
}

void DialogHand::Key(WPARAM key) const {
    const int focused = Focused();
    const HWND target = focused != 0 ? Control(focused) : dialog_;
    PostMessageW(target, WM_KEYDOWN, key, 1);
    PostMessageW(target, WM_KEYUP, key, 1);
    EXPECT_TRUE(GetThrough(frame_));
}

LRESULT DialogHand::Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const {
    DWORD_PTR result = 0;
    const bool answered = SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL,
                                              kSendMilliseconds, &result) != 0;
    EXPECT_TRUE(answered || !IsWindow(window)) << "message " << message;
    return static_cast<LRESULT>(result);
}

ApplyCallback ScriptedHost::Callback(std::function<bool()> toRun) {
    calls = 0;
    run = std::move(toRun);
    return [] {
        ++calls;
        return run();
    };
}

}  // namespace imgbasic
