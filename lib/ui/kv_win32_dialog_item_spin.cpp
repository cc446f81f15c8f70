#include "lib/ui/kv_win32_dialog_item_spin.h"

#include <commctrl.h>

#include <algorithm>
#include <string>

#include "lib/base/log.h"
#include "lib/base/number_text.h"
#include "lib/base/wide_text.h"

namespace imgbasic {
namespace {

/// Longest text that is read, with its end.
constexpr int kTextSize = 16;

/// Marks a section of code for those that it calls.
class Mark {
  public:
    explicit Mark(bool& flag) : flag_(flag) { flag_ = true; }
    ~Mark() { flag_ = false; }
    Mark(const Mark&) = delete;
    Mark& operator=(const Mark&) = delete;

  private:
    bool& flag_;
};

std::wstring TextOf(HWND edit) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(edit)) + 1, L'\0');
    const int length = GetWindowTextW(edit, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(length));
    return text;
}

}  // namespace

KVWin32DialogItemSpin::KVWin32DialogItemSpin(int id, int32_t initial, int32_t minimum,
                                             int32_t maximum, int editId)
    : KVWin32DialogItem(id),
      editId_(editId),
      value_(std::clamp(initial, minimum, maximum)),
      minimum_(minimum),
      maximum_(maximum) {
}

void KVWin32DialogItemSpin::Enable(bool enabled) {
    KVWin32DialogItem::Enable(enabled);
    EnableControl(edit_, enabled);
}

bool KVWin32DialogItemSpin::OnInitDialog(KVWin32DialogWindow* dialog) {
    if (!KVWin32DialogItem::OnInitDialog(dialog)) {
        return false;
    }
    edit_ = Find(editId_);
    if (edit_ == nullptr) {
        Log("[KVWin32DialogItemSpin::OnInitDialog]ダイアログアイテム%dが取得できません。\n",
            editId_);
        return false;
    }
    SetRange(minimum_, maximum_, false);
    SetValue(value_, true, true);
    return true;
}

bool KVWin32DialogItemSpin::HandleMessage(UINT message, WPARAM wParam, LPARAM /*lParam*/) {
    if (message != WM_COMMAND || LOWORD(wParam) != editId_ || edit_ == nullptr) {
        return false;
    }
    if (HIWORD(wParam) == EN_KILLFOCUS) {
        Accept(true);
    } else if (HIWORD(wParam) == EN_CHANGE && !writing_) {
        Accept(false);
    }
    return true;
}

void KVWin32DialogItemSpin::SetRange(int32_t minimum, int32_t maximum, bool redraw) {
    minimum_ = minimum;
    maximum_ = maximum;
    SendMessageW(Control(), UDM_SETRANGE32, static_cast<WPARAM>(minimum), maximum);
    if (redraw) {
        SetValue(value_, true, false);
    }
}

void KVWin32DialogItemSpin::SetValue(int32_t value, bool updateText, bool force) {
    const int32_t clamped = std::clamp(value, minimum_, maximum_);
    Change(clamped, kChangedByProgram);
    if (updateText || force || clamped != value) {
        WriteText();
    }
}

void KVWin32DialogItemSpin::Accept(bool leaving) {
    wchar_t text[kTextSize];
    const int length = GetWindowTextW(edit_, text, kTextSize);
    const TypedNumber typed = ReadTypedNumber(ShiftJisFromWide({text, static_cast<size_t>(length)}),
                                              minimum_, maximum_, leaving);
    if (typed.value) {
        Change(*typed.value, kChangedByUser);
    }
    if (typed.rewrite) {
        WriteText();
    }
}

void KVWin32DialogItemSpin::Change(int32_t value, ItemChangeFlag flag) {
    {
        // The up-down control writes the number into the field, over what is being typed.
        const Mark mark(writing_);
        const std::wstring before = TextOf(edit_);
        DWORD begin = 0;
        DWORD end = 0;
        SendMessageW(edit_, EM_GETSEL, reinterpret_cast<WPARAM>(&begin),
                     reinterpret_cast<LPARAM>(&end));
        SendMessageW(Control(), UDM_SETPOS32, 0, value);
        if (TextOf(edit_) != before) {
            SetWindowTextW(edit_, before.c_str());
            SendMessageW(edit_, EM_SETSEL, begin, static_cast<LPARAM>(end));
        }
    }
    if (value != value_) {
        value_ = value;
        NotifyChange(flag, value);
    }
}

void KVWin32DialogItemSpin::WriteText() {
    const Mark mark(writing_);
    SetWindowTextW(edit_, std::to_wstring(value_).c_str());
}

}  // namespace imgbasic
