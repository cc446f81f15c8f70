#include <gtest/gtest.h>

#include <vector>

#include "lib/base/log.h"
#include "lib/ui/kv_win32_dialog_item_auto_radio_button.h"
#include "lib/ui/kv_win32_dialog_item_check_box.h"
#include "lib/ui/kv_win32_dialog_item_slider.h"
#include "lib/ui/kv_win32_dialog_window.h"
#include "tests/plugin/private_store.h"

namespace imgbasic {
namespace {

/// A dialog of the framework's own, over one of the module's templates.
struct TestDialog : KVWin32DialogWindow {
    int destroyed = 0;

  protected:
    void OnBeforeDestroy() override {
        KVWin32DialogWindow::OnBeforeDestroy();
        ++destroyed;
    }
};

KVWin32DialogWindowCreateInfo Info(int templateId) {
    KVWin32DialogWindowCreateInfo info;
    info.className = L"framework test";
    info.style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    info.templateId = templateId;
    return info;
}

TEST(Framework, SaysWhyADialogCannotBeCreatedAndLeavesNothing) {
    const struct {
        int templateId;
        KVWin32DialogItem* item;
        const char* line;
    } cases[] = {
        {999, nullptr,
         "[KVWin32DialogWindow::PostCreate]ダイアログの作成に失敗した。リソースID=999\n"},
        {205, new KVWin32DialogItemCheckBox(77, true),
         "[KVWin32DialogBaseItem::OnInitDialog]ダイアログにアイテムID77が存在しません\n"},
        {205, new KVWin32DialogItemAutoRadioButton(1302, 1303, 0),
         "[KVWin32DialogItemAutoRadioButton::OnInitDialog]"
         "アイテムID1302は自動ラジオボタンではありません。\n"},
        {209, new KVWin32DialogItemAutoRadioButton(1317, 1319, 0),
         "[KVWin32DialogItemAutoRadioButton::OnInitDialog]"
         "アイテムID1319は自動ラジオボタンではありません。\n"},
        {205, new KVWin32DialogItemSpin(1302, 1, 1, 9, 78),
         "[KVWin32DialogItemSpin::OnInitDialog]ダイアログアイテム78が取得できません。\n"},
        {205, new KVWin32DialogItemSlider(1300, 1, 1, 9, 79, 1302),
         "[KVWin32DialogItemSlider::OnInitDialog]ダイアログアイテム79が取得できません。\n"},
    };
    std::string line;
    const LogCapture capture([&](std::string_view text) { line += text.substr(22); });
    for (const auto& c : cases) {
        line.clear();
        TestDialog dialog;
        auto info = Info(c.templateId);
        if (c.item != nullptr) {
            info.items.emplace_back(c.item);
        }
        EXPECT_FALSE(dialog.Create(&info));
        EXPECT_EQ(line, c.line);
        EXPECT_EQ(dialog.Handle(), nullptr);
        EXPECT_EQ(dialog.Dialog(), nullptr);
        EXPECT_EQ(dialog.destroyed, 1);
        EXPECT_EQ(FindWindowW(L"framework test", nullptr), nullptr);
    }
    line.clear();
    TestDialog dialog;
    EXPECT_FALSE(dialog.Create(nullptr));
    const KVWin32DialogWindowCreateInfo info = Info(205);
    KVWin32WindowCreateInfo noDialog = static_cast<const KVWin32WindowCreateInfo&>(info);
    EXPECT_FALSE(dialog.Create(&noDialog));
    EXPECT_FALSE(KVWin32DialogItemCheckBox(1, true).OnInitDialog(nullptr));
    EXPECT_EQ(line,
              "[KVWin32DialogWindow::PreCreate]ウィンドウ生成情報が指定されていません。\n"
              "[KVWin32DialogWindow::PostCreate]ウィンドウ生成情報が指定されていません。\n"
              "[KVWin32DialogBaseItem::OnInitDialog]ダイアログが生成されていません。\n");
}

RECT ClientOf(const KVWin32Window& window) {
    RECT client{};
    GetClientRect(window.Handle(), &client);
    MapWindowPoints(window.Handle(), nullptr, reinterpret_cast<POINT*>(&client), 2);
    return client;
}

TEST(Framework, RemembersPlacesOnlyWhenAsked) {
    ClearPrivateStore();
    const auto stored = [](const char* key, RECT& rect) {
        DWORD size = sizeof rect;
        return RegGetValueA(HKEY_CURRENT_USER, key, "ClientRect", RRF_RT_REG_BINARY, nullptr, &rect,
                            &size) == ERROR_SUCCESS;
    };
    RECT rect{};
    for (const bool remember : {false, true}) {
        TestDialog parent;
        auto info = Info(205);
        info.rememberPlacement = remember;
        ASSERT_TRUE(parent.Create(&info));
        SetWindowPos(parent.Handle(), nullptr, 123, 45, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        const RECT moved = ClientOf(parent);
        {
            TestDialog child;
            auto childInfo = Info(206);
            childInfo.rememberPlacement = remember;
            childInfo.parent = &parent;
            childInfo.childNumber = 0x1F;
            ASSERT_TRUE(child.Create(&childInfo));
            child.Close(IDOK);
            EXPECT_EQ(child.RunModal(), IDOK);
        }
        EXPECT_EQ(stored("Software\\orvex\\KVApp\\001f", rect), remember);
        parent.Close(IDOK);
        parent.RunModal();
        EXPECT_EQ(stored("Software\\orvex\\KVApp", rect), remember);
        if (remember) {
            EXPECT_TRUE(EqualRect(&rect, &moved));
            TestDialog again;
            ASSERT_TRUE(again.Create(&info));
            const RECT client = ClientOf(again);
            EXPECT_EQ(client.left, moved.left);
            EXPECT_EQ(client.top, moved.top);
        }
    }
}

/// What no hook wants to hear twice.
struct ListeningDialog : TestDialog {
    std::vector<std::array<int, 3>> heard;
    void OnItemChange(int id, int flag, int32_t value) override {
        heard.push_back({id, flag, value});
    }
};

TEST(Framework, SlidersClampNotifyAndWriteTheirText) {
    ListeningDialog dialog;
    auto info = Info(205);
    info.items.push_back(std::make_unique<KVWin32DialogItemSlider>(1300, 999, 1, 255, 1301, 1302));
    ASSERT_TRUE(dialog.Create(&info));
    KVWin32DialogItem& slider = *dialog.FindItem(1300);
    const auto text = [&] { return GetDlgItemInt(dialog.Dialog(), 1301, nullptr, TRUE); };
    EXPECT_EQ(slider.Value(), 255);
    EXPECT_EQ(text(), 255U);
    EXPECT_TRUE(dialog.heard.empty()) << "the beginning is no change";
    slider.SetValue(7, false, false);
    EXPECT_EQ(slider.Value(), 7);
    EXPECT_EQ(text(), 255U) << "the text is left alone";
    slider.SetValue(-5, false, false);
    EXPECT_EQ(text(), 1U) << "but not out of bounds";
    slider.SetNotifies(false);
    slider.SetValue(9, false, true);
    EXPECT_EQ(text(), 9U) << "forced";
    slider.SetNotifies(true);
    SetDlgItemTextA(dialog.Dialog(), 1301, "20");
    EXPECT_EQ(slider.Value(), 20);
    slider.SetRange(1, 10, true);
    EXPECT_EQ(text(), 10U);
    EXPECT_EQ(dialog.heard,
              (std::vector<std::array<int, 3>>{{1300, 1, 7}, {1300, 1, 1}, {1300, 0, 20}}));
    slider.Enable(false);
    EXPECT_FALSE(slider.IsEnabled());
    for (const int id : {1300, 1301, 1302}) {
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog.Dialog(), id))) << id;
    }
}

}  // namespace
}  // namespace imgbasic
