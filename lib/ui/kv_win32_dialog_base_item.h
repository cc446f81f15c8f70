#pragma once

#include <cstdint>

#include "lib/base/platform.h"

namespace imgbasic {

class KVWin32DialogWindow;

/// Who changed an item's value.
enum ItemChangeFlag : int { kChangedByUser = 0, kChangedByProgram = 1 };

/// One control of a dialog, or one with its buddies, that belong to the dialog's template.
class KVWin32DialogBaseItem {
  public:
    explicit KVWin32DialogBaseItem(int id) : id_(id) {}
    virtual ~KVWin32DialogBaseItem() = default;
    KVWin32DialogBaseItem(const KVWin32DialogBaseItem&) = delete;
    KVWin32DialogBaseItem& operator=(const KVWin32DialogBaseItem&) = delete;

    int Id() const { return id_; }

    virtual void Enable(bool enabled);
    bool IsEnabled() const { return enabled_; }

    /// Binds the item to its control once the dialog exists; false, after a line in the log, when
    /// the template is not as expected. `dialog` must outlive the item.
    virtual bool OnInitDialog(KVWin32DialogWindow* dialog);

    /// Whether the dialog hears of changes of the value.
    bool Notifies() const { return notifies_; }
    void SetNotifies(bool notifies) { notifies_ = notifies; }

    /// Handles a message that one of the item's controls sent to the dialog; false if it is not
    /// the item's.
    virtual bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);

    /// Where the control was at first, in the dialog's client coordinates.
    const RECT& Rect() const { return rect_; }

  protected:
    HWND Control() const { return control_; }
    /// A control of the dialog; null if it has none with this identifier.
    HWND Find(int id) const;
    /// Enables or disables a control; the focus moves on from one that is disabled.
    void EnableControl(HWND control, bool enabled) const;
    void NotifyChange(ItemChangeFlag flag, int32_t value);

  private:
    int id_;
    KVWin32DialogWindow* dialog_ = nullptr;
    HWND control_ = nullptr;
    RECT rect_{};
    bool notifies_ = true;
    bool enabled_ = true;
};

}  // namespace imgbasic
