#pragma once

#include <memory>

#include "lib/ui/kv_win32_dialog_item.h"
#include "plugin/imgbasic/filter_option.h"

namespace imgbasic {

/// The control of an option, showing `value`: a slider or an up-down with its field for a number
/// in the option's range, a list for a choice, a box for a switch.
std::unique_ptr<KVWin32DialogItem> MakeItem(const FilterOption& option, int32_t value);

}  // namespace imgbasic
