#pragma once

#include <functional>
#include <string>

#include "lib/base/platform.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// Works an open dialog as a person would, from another thread. Whatever takes longer than a few
/// seconds fails the test.
class DialogHand {
  public:
    DialogHand(HWND frame, HWND dialog) : frame_(frame), dialog_(dialog) {}

    HWND Frame() const { return frame_; }
    HWND Control(int id) const { return GetDlgItem(dialog_, id); }
    /// What a control shows: a text, the number of a trackbar or an up-down control, 0 or 1 for
    /// what can be checked. If it is disabled, that stands in brackets.
    std::wstring Look(int id) const;
    /// The same of every control, as "identifier=what identifier=what", by the identifiers.
    std::wstring Look() const;
    /// The control that has the focus; 0 if it is none of the dialog's.
    int Focused() const;

    void Click(int id) const { Send(Control(id), BM_CLICK, 0, 0); }
    void Pick(int id, int index) const;
    void Slide(int id, int position) const;
    void Focus(int id) const;
    /// Types over the field's text, key by key.
    void Type(int id, const std::wstring& text) const;
    /// Presses a key where the focus is, and waits until it has been handled.
    void Key(WPARAM key) const;
    LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const;

  private:
    HWND frame_;
    HWND dialog_;
};

using Script = std::function<void(const DialogHand& hand)>;

/// Runs `open`, which is to show the dialog of this filter, while `script` works it. A dialog that
/// is still open afterwards fails the test and is closed; one that cannot be ends the program.
bool WithHand(const char* filter, const std::function<bool()>& open, const Script& script);

/// The host of the running test.
struct ScriptedHost {
    static inline int calls = 0;
    static inline std::function<bool()> run;

    /// What to hand to a filter as its callback, after setting what it does.
    static ApplyCallback Callback(std::function<bool()> toRun = [] { return true; });
};

}  // namespace imgbasic
