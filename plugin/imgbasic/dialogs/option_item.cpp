#include "plugin/imgbasic/dialogs/option_item.h"

#include <utility>

#include "lib/ui/kv_win32_dialog_item_check_box.h"
#include "lib/ui/kv_win32_dialog_item_combo_box.h"
#include "lib/ui/kv_win32_dialog_item_slider.h"
#include "lib/ui/kv_win32_dialog_item_spin.h"

namespace imgbasic {
namespace {

std::unique_ptr<KVWin32DialogItem> MakeNumber(const FilterOption& option, int32_t value) {
    const auto& [id, edit, spin] = option.controls;
    if (spin == 0) {
        return std::make_unique<KVWin32DialogItemSpin>(id, value, option.least, option.most, edit);
    }
    return std::make_unique<KVWin32DialogItemSlider>(id, value, option.least, option.most, edit,
                                                     spin);
}

std::unique_ptr<KVWin32DialogItem> MakeList(const FilterOption& option, int32_t value) {
    KVArray<const char*> texts;
    for (const Text& text : option.choices) {
        texts.push_back(text.shiftJis);
    }
    return std::make_unique<KVWin32DialogItemComboBox>(option.controls.id, std::move(texts), value);
}

}  // namespace

std::unique_ptr<KVWin32DialogItem> MakeItem(const FilterOption& option, int32_t value) {
    switch (option.kind) {
        case OptionKind::Number:
            return MakeNumber(option, value);
        case OptionKind::Choice:
            return MakeList(option, value);
        case OptionKind::Switch:
            break;
    }
    return std::make_unique<KVWin32DialogItemCheckBox>(option.controls.id, value != 0);
}

}  // namespace imgbasic
