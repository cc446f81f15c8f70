#pragma once

#include "lib/ui/kv_win32_dialog_base_item.h"

namespace imgbasic {

/// An item with a value.
class KVWin32DialogItem : public KVWin32DialogBaseItem {
  public:
    using KVWin32DialogBaseItem::KVWin32DialogBaseItem;

    /// Sets the bounds of a numeric value; items of other kinds have none.
    virtual void SetRange(int32_t /*minimum*/, int32_t /*maximum*/, bool /*redraw*/) {}

    /// What the control shows.
    virtual int32_t Value() const = 0;

    /// Shows `value`, brought into the item's bounds, and tells the dialog if it is another one.
    /// The buddy's text follows if `updateText` is set, and at any rate when `force` is.
    virtual void SetValue(int32_t value, bool updateText, bool force) = 0;
};

}  // namespace imgbasic
