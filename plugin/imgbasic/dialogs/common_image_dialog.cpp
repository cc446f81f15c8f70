#include "plugin/imgbasic/dialogs/common_image_dialog.h"

#include <utility>

#include "plugin/imgbasic/dialogs/item_list.h"
#include "plugin/imgbasic/dialogs/resource.h"
#include "plugin/imgbasic/nega.h"

namespace imgbasic {

CommonImageDialog::CommonImageDialog(NegaImageProcess& process)
    : CommonImageDialog(process, OptionsOf(process)) {
}

CommonImageDialog::CommonImageDialog(ImageProcess& process, std::vector<DialogOption> options)
    : process_(process), options_(std::move(options)) {
}

KVWin32DialogItemArray CommonImageDialog::Items() const {
    KVWin32DialogItemArray items;
    items.push_back(MakeList(IDC_TARGET_TYPE, texts::kTargetTypes, process_.TargetType));
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
    switch (CarryOut(press, options_, ShownOptions(), process_.applyCallback)) {
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
    for (const DialogOption& option : options_) {
        const KVWin32DialogItem* item = FindItem(option.control);
        shown.push_back(item != nullptr ? item->Value() : option.absent);
    }
    return shown;
}

}  // namespace imgbasic
