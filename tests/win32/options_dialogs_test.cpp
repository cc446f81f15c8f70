#include <gtest/gtest.h>
#include <malloc.h>

#include <string>
#include <vector>

#include "plugin/imgbasic/entry.h"
#include "tests/plugin/private_store.h"
#include "tests/win32/dialog_hand.h"

namespace imgbasic {
namespace {

/// What the module answers when a filter's dialog is to open over an image of 200 x 100: 1 when it
/// is confirmed.
int Open(const char* filter, ApplyCallback apply, HWND owner = nullptr) {
    ImageProcess* object =
        ImagePluginPrepare2(filter, 200, 100, 0, 0, -1, 0, 0, 0, owner, 0, nullptr);
    const int result = ImagePluginDialog(filter, object, apply);
    ImagePluginDispose(filter, object);
    return result;
}

/// True when the dialog is confirmed.
bool IsConfirmed(const char* filter, ApplyCallback apply, const Script& script,
                 HWND owner = nullptr) {
    const auto open = [&] {
        const int result = Open(filter, apply, owner);
        EXPECT_TRUE(result == 1 || result == -1);
        return result == 1;
    };
    return WithHand(filter, open, script);
}

/// One dialog with what it shows and stores.
struct DialogCase {
    const char* filter;
    const wchar_t* defaults;
    const char* good;          ///< stored numbers, as few of them a default as can be
    const wchar_t* goodShown;  ///< with them
    Script change;             ///< enters `good` by hand
};

const DialogCase kDialogs[] = {
    {"nega", L"1=実行 2=中止 1002=結合した画像 1303=プレビュー", "TargetType=2",
     L"1=実行 2=中止 1002=カレントレイヤー 1303=プレビュー",
     [](const DialogHand& hand) { hand.Pick(1002, 2); }},
    {"gray", L"1=実行 2=中止 1002=結合した画像 1003=明度平均 1004=白 1303=プレビュー",
     "CalcMode=9 ColorMode=8 TargetType=1",
     L"1=実行 2=中止 1002=全レイヤー 1003=色差・赤(Cr) 1004=背景色 1303=プレビュー",
     [](const DialogHand& hand) {
         hand.Pick(1003, 9);
         hand.Pick(1004, 8);
         hand.Pick(1002, 1);
     }},
    {"mono", L"1=実行 2=中止 1002=結合した画像 1300=128 1301=128 1302=128 1303=プレビュー",
     "Threshold=255 TargetType=2",
     L"1=実行 2=中止 1002=カレントレイヤー 1300=255 1301=255 1302=255 1303=プレビュー",
     [](const DialogHand& hand) {
         hand.Slide(1300, 255);
         hand.Pick(1002, 2);
     }},
    {"col_reduce",
     L"1=実行 2=中止 1002=結合した画像 1003=16 1004=16 1005=16 1006=0 1007=0 "
     L"1012=誤差拡散(大) 1303=プレビュー",
     "ReduceColor=256 DitherType=1 TargetType=1 SharePalette=1 GraduateReduce=1",
     L"1=実行 2=中止 1002=全レイヤー 1003=256 1004=256 1005=256 1006=1 1007=1 "
     L"1012=パターン 1303=プレビュー",
     [](const DialogHand& hand) {
         hand.Type(1004, L"256");
         hand.Click(1007);
         hand.Pick(1012, 1);
         hand.Pick(1002, 1);
         hand.Click(1006);
     }},
    {"scaling",
     L"1=変更 2=中止 1231=1 1273=(100) 1276=(100) 1277=(100) 1279=(100) 1303=1 1317=1 1318=0 "
     L"1320=200 1321=100 1322=200 1323=100 1332=クリップ 1333=バイリニア 1393=(1)",
     "RatioSize=1 RatioWidth=300 RatioHeight=50 FixRatio=0 InterType=2 BoundaryType=2 "
     "BoundAlpha=0 ChangeBrush=0",
     L"1=変更 2=中止 1231=0 1273=300 1276=300 1277=50 1279=50 1303=0 1317=0 1318=1 "
     L"1320=(200) 1321=(100) 1322=(200) 1323=(100) 1332=リピート 1333=バイリニア 1393=0",
     [](const DialogHand& hand) {
         hand.Type(1320, L"300");
         EXPECT_EQ(hand.Look(1321), L"150");
         hand.Type(1321, L"100");
         hand.Click(1318);
         hand.Type(1273, L"300");
         EXPECT_EQ(hand.Look(1277), L"300");
         hand.Click(1303);
         hand.Type(1277, L"50");
         hand.Pick(1333, 0);
         EXPECT_EQ(hand.Look(1332) + hand.Look(1393), L"(クリップ)(1)");
         hand.Pick(1333, 2);
         hand.Pick(1332, 2);
         hand.Click(1393);
         hand.Click(1231);
     }},
};

class OptionsDialogs : public testing::TestWithParam<DialogCase> {
  protected:
    void SetUp() override { ClearPrivateStore(); }

    const DialogCase& Case() const { return GetParam(); }

    bool OpenWith(ApplyCallback apply, const Script& script) const {
        return IsConfirmed(Case().filter, apply, script);
    }
};

void Cancel(const DialogHand& hand) {
    hand.Click(IDCANCEL);
}

TEST_P(OptionsDialogs, StoreWhatIsExecutedAndShowItAgain) {
    EXPECT_TRUE(OpenWith(ScriptedHost::Callback(), [&](const DialogHand& hand) {
        EXPECT_EQ(hand.Look(), Case().defaults);
        Case().change(hand);
        EXPECT_EQ(hand.Look(), Case().goodShown);
        hand.Click(IDOK);
    }));
    EXPECT_EQ(ScriptedHost::calls, 1);
    EXPECT_EQ(Stored(Case().filter), Case().good);
    EXPECT_FALSE(OpenWith(ScriptedHost::Callback(), [&](const DialogHand& hand) {
        EXPECT_EQ(hand.Look(), Case().goodShown);
        hand.Click(IDCANCEL);
    }));
    EXPECT_EQ(Stored(Case().filter), Case().good) << "cancelling writes nothing";
}

TEST_P(OptionsDialogs, StoreNothingWithoutAHost) {
    EXPECT_TRUE(OpenWith(nullptr, [&](const DialogHand& hand) {
        const bool previews = Case().filter != std::string("scaling");
        EXPECT_EQ(hand.Look(1303), previews ? L"(プレビュー)" : L"1");
        EXPECT_EQ(hand.Look(1002), previews ? L"(結合した画像)" : L"()");
        hand.Click(IDOK);
    }));
    EXPECT_EQ(Stored(Case().filter), "");
}

/// What a dialog could leave behind.
struct Counts {
    int windows = 0;
    int heapBlocks = 0;

    Counts() {
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND, LPARAM count) { return ++*reinterpret_cast<int*>(count), TRUE; },
            reinterpret_cast<LPARAM>(&windows));
        _HEAPINFO block{};
        while (_heapwalk(&block) == _HEAPOK) {
            heapBlocks += block._useflag == _USEDENTRY ? 1 : 0;
        }
    }
};

TEST_P(OptionsDialogs, LeaveNothingBehind) {
    constexpr int kTimes = 200;
    const ApplyCallback apply = ScriptedHost::Callback();
    EXPECT_FALSE(OpenWith(apply, Cancel));
    const Counts before;
    for (int i = 0; i < kTimes; ++i) {
        ASSERT_FALSE(OpenWith(apply, Cancel));
    }
    const Counts after;
    EXPECT_EQ(after.windows, before.windows);
    // The system keeps a few blocks of its own from time to time.
    EXPECT_LT(after.heapBlocks, before.heapBlocks + kTimes / 4);
}

INSTANTIATE_TEST_SUITE_P(Each, OptionsDialogs, testing::ValuesIn(kDialogs),
                         [](const auto& dialog) { return std::string(dialog.param.filter); });

class OneDialog : public testing::Test {
  protected:
    void SetUp() override { ClearPrivateStore(); }
};

bool OpenMono(ApplyCallback apply, const Script& script, HWND owner = nullptr) {
    return IsConfirmed("mono", apply, script, owner);
}

bool OpenScaling(const Script& script) {
    return IsConfirmed("scaling", ScriptedHost::Callback(), script);
}

TEST_F(OneDialog, ReadsANumberFieldAsItIsTyped) {
    OpenMono(ScriptedHost::Callback(), [&](const DialogHand& hand) {
        hand.Type(1301, L"12,5");
        EXPECT_EQ(hand.Look(1300), L"125");
        hand.Type(1301, L"999999");
        EXPECT_EQ(hand.Look(1301), L"999999") << "the text is left alone while it is typed";
        EXPECT_EQ(hand.Look(1300), L"255");
        hand.Focus(1002);
        EXPECT_EQ(hand.Look(1301), L"255");
        hand.Click(IDCANCEL);
    });
}

TEST_F(OneDialog, ListensToTheKeyboard) {
    EXPECT_TRUE(OpenMono(ScriptedHost::Callback(), [](const DialogHand& hand) {
        for (const int id : {1300, 1301, 1002, 1303, 1, 2, 1300}) {
            EXPECT_EQ(hand.Focused(), id);
            hand.Key(VK_TAB);
        }
        EXPECT_EQ(hand.Focused(), 1301);
        hand.Key(VK_UP);
        EXPECT_EQ(hand.Look(1300), L"129");
        hand.Focus(1300);
        hand.Key(VK_LEFT);
        hand.Key(VK_LEFT);
        EXPECT_EQ(hand.Look(1301), L"127");
        hand.Focus(1002);
        hand.Key(VK_DOWN);
        EXPECT_EQ(hand.Look(1002), L"全レイヤー");
        hand.Key(VK_RETURN);
    }));
    EXPECT_EQ(Stored("mono"), "Threshold=127 TargetType=1");
}

TEST_F(OneDialog, CancelsInEveryWay) {
    const Script ways[] = {
        Cancel,
        [](const DialogHand& hand) { hand.Key(VK_ESCAPE); },
        [](const DialogHand& hand) { PostMessageW(hand.Frame(), WM_SYSCOMMAND, SC_CLOSE, 0); },
        [](const DialogHand& hand) { hand.Send(hand.Frame(), WM_CLOSE, 0, 0); },
        [](const DialogHand& hand) {
            PostMessageW(hand.Control(hand.Focused()), WM_SYSKEYDOWN, VK_F4, 1 << 29 | 1);
        },
    };
    for (const Script& way : ways) {
        EXPECT_FALSE(OpenMono(ScriptedHost::Callback(), way));
    }
    EXPECT_EQ(Stored("mono"), "");
}

TEST_F(OneDialog, OfABatchTellsWhetherItWasCancelled) {
    for (const int button : {IDOK, IDCANCEL}) {
        int cancelled = 5;
        const auto prepare = [&] {
            ImageProcess* const object = ImagePluginBatchPrepare("scaling", nullptr, &cancelled);
            return object != nullptr && ImagePluginBatchDispose("scaling", object);
        };
        const auto press = [=](const DialogHand& hand) { hand.Click(button); };
        EXPECT_EQ(WithHand("scaling", prepare, press), button == IDOK);
        EXPECT_EQ(cancelled, button == IDOK ? 5 : 1);
    }
}

TEST_F(OneDialog, ScalingHearsOfAListThatIsLeftByEscape) {
    OpenScaling([](const DialogHand& hand) {
        const HWND list = hand.Control(1333);
        COMBOBOXINFO info{};
        info.cbSize = sizeof info;
        EXPECT_TRUE(GetComboBoxInfo(list, &info));
        hand.Send(info.hwndList, LB_SETCURSEL, 0, 0);
        hand.Send(GetParent(list), WM_COMMAND,
                  static_cast<WPARAM>(MAKELONG(1333, CBN_SELENDCANCEL)),
                  reinterpret_cast<LPARAM>(list));
        EXPECT_EQ(hand.Look(1332), L"(クリップ)");
        hand.Click(IDCANCEL);
    });
}

TEST_F(OneDialog, KeepsTheKeyboardWhenTheFocusedControlIsDisabled) {
    OpenScaling([](const DialogHand& hand) {
        hand.Pick(1332, 1);
        hand.Focus(1332);
        hand.Pick(1333, 0);
        EXPECT_EQ(hand.Focused(), 1231) << "past the box that is disabled as well";
        hand.Key(VK_ESCAPE);
    });
}

/// Stands for the host's window.
class Owner {
  public:
    Owner()
        : window_(CreateWindowExW(0, L"Static", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                  300, 200, nullptr, nullptr, nullptr, nullptr)) {}
    ~Owner() { DestroyWindow(window_); }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    HWND Get() const { return window_; }
    bool Enabled() const { return IsWindowEnabled(window_) != 0; }

  private:
    HWND window_;
};

TEST_F(OneDialog, DisablesItsOwnerForAsLongAsItIsOpen) {
    const Owner owner;
    for (const bool before : {true, false}) {
        EnableWindow(owner.Get(), before);
        OpenMono(
            ScriptedHost::Callback(),
            [&](const DialogHand& hand) {
                EXPECT_FALSE(owner.Enabled());
                EXPECT_EQ(GetWindow(hand.Frame(), GW_OWNER), owner.Get());
                hand.Click(IDCANCEL);
            },
            owner.Get());
        EXPECT_EQ(owner.Enabled(), before);
    }
    // A child cannot own a window, and what it is in must not take input either.
    EnableWindow(owner.Get(), TRUE);
    const HWND child = CreateWindowExW(0, L"Static", L"canvas", WS_CHILD | WS_VISIBLE, 0, 0, 9, 9,
                                       owner.Get(), nullptr, nullptr, nullptr);
    OpenMono(
        ScriptedHost::Callback(),
        [&](const DialogHand& hand) {
            EXPECT_FALSE(owner.Enabled());
            hand.Click(IDCANCEL);
        },
        child);
    EXPECT_TRUE(owner.Enabled());
    HWND gone = nullptr;
    {
        const Owner shortLived;
        gone = shortLived.Get();
    }
    EXPECT_FALSE(OpenMono(ScriptedHost::Callback(), Cancel, gone));
}

TEST_F(OneDialog, EndsWithItsOwner) {
    const Owner owner;
    const ApplyCallback apply = ScriptedHost::Callback([&] { return DestroyWindow(owner.Get()); });
    EXPECT_FALSE(OpenMono(
        apply, [](const DialogHand& hand) { hand.Click(1303); }, owner.Get()));
    const Owner another;
    EXPECT_FALSE(OpenMono(
        apply, [&](const DialogHand& hand) { hand.Send(another.Get(), WM_CLOSE, 0, 0); },
        another.Get()));
}

TEST_F(OneDialog, DoesNotNest) {
    HWND frame = nullptr;
    const ApplyCallback apply = ScriptedHost::Callback([&] {
        // Whatever is pressed while the host works, and whatever it opens, comes to nothing.
        const HWND dialog = FindWindowExW(frame, nullptr, L"#32770", nullptr);
        for (const int id : {1303, 1, 2}) {
            SendMessageW(GetDlgItem(dialog, id), BM_CLICK, 0, 0);
        }
        SendMessageW(frame, WM_CLOSE, 0, 0);
        EXPECT_EQ(Open("mono", [] { return true; }), 0);
        return true;
    });
    EXPECT_TRUE(OpenMono(apply, [&](const DialogHand& hand) {
        frame = hand.Frame();
        hand.Click(1303);
        EXPECT_EQ(ScriptedHost::calls, 1);
        EXPECT_TRUE(IsWindow(frame));
        hand.Click(IDOK);
    }));
    EXPECT_EQ(ScriptedHost::calls, 1);
}

TEST_F(OneDialog, IsCancelledWhenTheHostThrowsOrTheProgramEnds) {
    EXPECT_FALSE(OpenMono(ScriptedHost::Callback([]() -> bool { throw 1; }),
                          [](const DialogHand& hand) { hand.Click(IDOK); }));
    EXPECT_FALSE(OpenMono(ScriptedHost::Callback([] {
                              PostQuitMessage(7);
                              return true;
                          }),
                          [](const DialogHand& hand) { hand.Click(1303); }));
    EXPECT_EQ(Stored("mono"), "");
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0)) {
        // The caller's loop ends as well.
    }
    EXPECT_EQ(message.wParam, 7U);
}

}  // namespace
}  // namespace imgbasic
