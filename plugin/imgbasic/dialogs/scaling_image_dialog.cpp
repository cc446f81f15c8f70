#include "plugin/imgbasic/dialogs/scaling_image_dialog.h"

#include "lib/ui/kv_win32_dialog_item_auto_radio_button.h"
#include "plugin/imgbasic/dialogs/option_item.h"

namespace imgbasic {

ScalingImageDialog::ScalingImageDialog(ScalingImageProcess& process)
    : process_(process), options_(process) {
}

KVWin32DialogItemArray ScalingImageDialog::Items() const {
    KVWin32DialogItemArray items;
    for (FilterOption option : kScalingOptions) {
        const int32_t value = option.get(options_.edited);
        const int id = option.controls.id;
        if (id == IDC_BY_PIXELS) {
            items.push_back(
                std::make_unique<KVWin32DialogItemAutoRadioButton>(id, IDC_BY_RATIO, value));
            continue;
        }
        const bool isWidth = id == IDC_RATIO_WIDTH_SPIN;
        if (isWidth || id == IDC_RATIO_HEIGHT_SPIN) {
            const ValueRange range =
                RatioRange(isWidth ? options_.sourceWidth : options_.sourceHeight);
            option.least = range.low;
            option.most = range.high;
        }
        items.push_back(MakeItem(option, value));
    }
    return items;
}

bool ScalingImageDialog::PostCreate(KVWin32WindowCreateInfo* info) {
    if (!KVWin32DialogWindow::PostCreate(info)) {
        return false;
    }
    EnableControls();
    owner_.emplace(process_.ownerWindow);
    return true;
}

void ScalingImageDialog::OnBeforeDestroy() {
    KVWin32DialogWindow::OnBeforeDestroy();
    owner_.reset();
}

void ScalingImageDialog::OnCommand(int id) {
    if (id != IDOK) {
        KVWin32DialogWindow::OnCommand(id);
        return;
    }
    ReadControls();
    options_.StoreIn(process_);
    const bool agreed = process_.applyCallback == nullptr || process_.applyCallback();
    Close(agreed ? IDOK : IDCANCEL);
}

void ScalingImageDialog::OnItemChange(int id, int flag, int32_t value) {
    if (flag != kChangedByUser) {
        return;
    }
    const ScalingOptions& o = options_;
    switch (id) {
        case IDC_BY_PIXELS:
            options_.edited.RatioSize = value != 0;
            EnableControls();
            break;
        case IDC_FIX_RATIO:
            options_.edited.FixRatio = value != 0;
            break;
        case IDC_INTER_TYPE:
            options_.edited.InterType = value;
            EnableControls();
            break;
        case IDC_BOUNDARY_TYPE:
            options_.edited.BoundaryType = value;
            EnableControls();
            break;
        case IDC_WIDTH_SPIN:
            UpdatePartner(IDC_HEIGHT_SPIN, value, o.sourceWidth, o.sourceHeight);
            break;
        case IDC_HEIGHT_SPIN:
            UpdatePartner(IDC_WIDTH_SPIN, value, o.sourceHeight, o.sourceWidth);
            break;
        case IDC_RATIO_WIDTH_SPIN:
            UpdatePartner(IDC_RATIO_HEIGHT_SPIN, value, o.edited.RatioWidth, o.edited.RatioHeight);
            break;
        case IDC_RATIO_HEIGHT_SPIN:
            UpdatePartner(IDC_RATIO_WIDTH_SPIN, value, o.edited.RatioHeight, o.edited.RatioWidth);
            break;
        default:
            break;
    }
}

void ScalingImageDialog::ReadControls() {
    for (const FilterOption& option : kScalingOptions) {
        // Without its control an option stays as it is.
        if (const KVWin32DialogItem* item = FindItem(option.controls.id)) {
            option.set(options_.edited, item->Value());
        }
    }
}

void ScalingImageDialog::EnableControls() {
    const auto enable = [&](int id, bool enabled) {
        if (KVWin32DialogItem* item = FindItem(id)) {
            item->Enable(enabled);
        }
    };
    enable(IDC_WIDTH_SPIN, options_.PixelsEnabled());
    enable(IDC_HEIGHT_SPIN, options_.PixelsEnabled());
    enable(IDC_RATIO_WIDTH_SPIN, options_.RatiosEnabled());
    enable(IDC_RATIO_HEIGHT_SPIN, options_.RatiosEnabled());
    enable(IDC_BOUNDARY_TYPE, options_.BoundaryEnabled());
    enable(IDC_BOUND_ALPHA, options_.BoundAlphaEnabled());
}

void ScalingImageDialog::UpdatePartner(int partner, int32_t value, int32_t ownReference,
                                       int32_t partnerReference) {
    KVWin32DialogItem* item = FindItem(partner);
    if (!options_.edited.FixRatio || item == nullptr) {
        return;
    }
    // Or the two would chase each other.
    const bool notified = item->Notifies();
    item->SetNotifies(false);
    item->SetValue(LinkedValue(value, ownReference, partnerReference), true, false);
    item->SetNotifies(notified);
}

}  // namespace imgbasic
