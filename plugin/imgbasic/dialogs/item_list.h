#pragma once

#include <array>
#include <memory>
#include <utility>

#include "lib/ui/kv_win32_dialog_item_combo_box.h"
#include "plugin/imgbasic/texts.h"

namespace imgbasic {

/// A drop-down list of texts of the module.
template <size_t Count>
std::unique_ptr<KVWin32DialogItem> MakeList(int id, const std::array<Text, Count>& texts,
                                            int32_t initial) {
    KVArray<const char*> narrow;
    for (const Text& text : texts) {
        narrow.push_back(text.shiftJis);
    }
    return std::make_unique<KVWin32DialogItemComboBox>(id, std::move(narrow), initial);
}

}  // namespace imgbasic
