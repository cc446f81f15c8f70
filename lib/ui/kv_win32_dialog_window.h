#pragma once

#include <memory>

#include "lib/base/kv_array.h"
#include "lib/ui/kv_win32_dialog_item.h"
#include "lib/ui/kv_win32_standard_window.h"

namespace imgbasic {

using KVWin32DialogItemArray = KVArray<std::unique_ptr<KVWin32DialogItem>>;

struct KVWin32DialogWindowCreateInfo : KVWin32WindowCreateInfo {
    int templateId = 0;
    KVWin32DialogItemArray items;  ///< the dialog takes them over
};

/// A frame window around a dialog template, which is its child, with items bound to the
/// template's controls. The keyboard works as in any dialog.
class KVWin32DialogWindow : public KVWin32StandardWindow {
  public:
    /// The items' controls go before the items.
    ~KVWin32DialogWindow() override { Destroy(); }

    /// The child that the template became; null when there is none.
    HWND Dialog() const { return dialog_; }

    /// The item that is known by a control's identifier; null if there is none.
    KVWin32DialogItem* FindItem(int id) const;

    /// Called when an item's value changed; `flag` is an ItemChangeFlag.
    virtual void OnItemChange(int id, int flag, int32_t value);

  protected:
    bool PreCreate(KVWin32WindowCreateInfo* info) override;
    bool PostCreate(KVWin32WindowCreateInfo* info) override;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool TranslateKeys(MSG& message) override;

    /// Called for every button that no item is bound to; never again before it has returned.
    /// IDOK and IDCANCEL close the dialog.
    virtual void OnCommand(int id);

  private:
    static INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam,
                                            LPARAM lParam);
    bool OnDialogMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void Command(int id);
    void KeepFocus();
    void RestoreFocus();

    KVWin32DialogItemArray items_;
    HWND dialog_ = nullptr;
    HWND focus_ = nullptr;  ///< the control that had it when the window was left
    bool inCommand_ = false;
};

}  // namespace imgbasic
