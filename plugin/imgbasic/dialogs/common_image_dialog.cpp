#include "plugin/imgbasic/dialogs/common_image_dialog.h"

#include "plugin/imgbasic/dialogs/option_item.h"

namespace imgbasic {

CommonImageDialog::CommonImageDialog(ImageProcess& process, const FilterRow& filter)
    : process_(process), filter_(filter), options_(process, filter) {
}

KVWin32DialogItemArray CommonImageDialog::Items() const {
    KVWin32DialogItemArray items;
    for (const FilterOption& option : filter_.options) {
        items.push_back(MakeItem(option, option.get(process_)));
    }
    return items;
}

bool CommonImageDialog::PostCreate(KVWin32WindowCreateInfo* info) {
    if (!KVWin32DialogWindow::PostCreate(info)) {
        return false;
    }
    if (process_.applyCallback == nullptr) {
        EnableWindow(GetDlgItem(Dialog(), IDC_PREVIEW), FALSE);
        if (KVWin32DialogItem* target = FindItem(IDC_TARGET_TYPE)) {
            target->Enable(false);
        }
    }
    owner_.emplace(process_.ownerWindow);
    return true;
}

void CommonImageDialog::OnBeforeDestroy() {
    KVWin32DialogWindow::OnBeforeDestroy();
    owner_.reset();
}

void CommonImageDialog::OnCommand(int id) {
    if (id != IDOK && id != IDC_PREVIEW) {
        KVWin32DialogWindow::OnCommand(id);
        return;
    }
    const Press press = id == IDOK ? Press::Execute : Press::Preview;
    switch (options_.CarryOut(press, ShownOptions())) {
        case DialogEnd::StaysOpen:
            break;
        case DialogEnd::Confirmed:
            Close(IDOK);
            break;
        case DialogEnd::Cancelled:
            Close(IDCANCEL);
            break;
    }
}

std::vector<int32_t> CommonImageDialog::ShownOptions() const {
    std::vector<int32_t> shown;
    for (const FilterOption& option : filter_.options) {
        const KVWin32DialogItem* item = FindItem(option.controls.id);
        shown.push_back(item != nullptr ? item->Value() : AbsentValue(option));
    }
    return shown;
}

}  // namespace imgbasic
