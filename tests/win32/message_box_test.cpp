#include "plugin/imgbasic/message_box.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace imgbasic {
namespace {

std::wstring TextOf(HWND window) {
    wchar_t text[128];
    return {text, static_cast<size_t>(GetWindowTextW(window, text, 128))};
}

BOOL CALLBACK FindBox(HWND window, LPARAM box) {
    wchar_t name[8];
    const bool found = GetClassNameW(window, name, 8) > 0 && name == std::wstring(L"#32770");
    if (found) {
        *reinterpret_cast<HWND*>(box) = window;
    }
    return !found;
}

// Whatever code page the process runs in: `./dev test` has this one run in another one too.
TEST(MessageBoxText, IsJapanese) {
    const DWORD shower = GetCurrentThreadId();
    std::wstring caption;
    std::wstring text;
    std::thread reader([&] {
        HWND box = nullptr;
        HWND label = nullptr;
        for (int i = 0; i < 1000 && label == nullptr; ++i) {
            Sleep(10);
            EnumThreadWindows(shower, FindBox, reinterpret_cast<LPARAM>(&box));
            label = FindWindowExW(box, nullptr, L"Static", nullptr);
        }
        Sleep(100);
        for (label = nullptr; (label = FindWindowExW(box, label, L"Static", nullptr)) != nullptr;) {
            text += TextOf(label);
        }
        caption = TextOf(box);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    });
    ShowError(nullptr, texts::Of(texts::Message::DuplicateChannelImage), texts::kChannelNames[1]);
    reader.join();
    EXPECT_EQ(caption, L"エラー");
    EXPECT_EQ(text, L"緑チャンネル画像が重複しています。");
}

}  // namespace
}  // namespace imgbasic
