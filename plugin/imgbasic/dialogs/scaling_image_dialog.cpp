#include "plugin/imgbasic/dialogs/scaling_image_dialog.h"

#include "lib/ui/kv_win32_dialog_item_auto_radio_button.h"
#include "lib/ui/kv_win32_dialog_item_check_box.h"
#include "lib/ui/kv_win32_dialog_item_spin.h"
#include "plugin/imgbasic/dialogs/item_list.h"
#include "plugin/imgbasic/dialogs/resource.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {

ScalingImageDialog::ScalingImageDialog(ScalingImageProcess& process)
    : process_(process), options_(process) {
}

KVWin32DialogItemArray ScalingImageDialog::Items() const {
    const ValueRange sides{1, ScalingImageProcess::kMaxSize};
    KVWin32DialogItemArray items;
    const auto addSpin = [&](int id, int32_t initial, const ValueRange& range, int editId) {
        items.push_back(
            std::make_unique<KVWin32DialogItemSpin>(id, initial, range.low, range.high, editId));
    };
    const auto addBox = [&](int id, bool initial) {
        items.push_back(std::make_unique<KVWin32DialogItemCheckBox>(id, initial));
    };
    items.push_back(std::make_unique<KVWin32DialogItemAutoRadioButton>(IDC_BY_PIXELS, IDC_BY_RATIO,
                                                                       options_.ratioMode));
    addSpin(IDC_WIDTH_SPIN, options_.pixelWidth, sides, IDC_WIDTH_EDIT);
    addSpin(IDC_HEIGHT_SPIN, options_.pixelHeight, sides, IDC_HEIGHT_EDIT);
    addSpin(IDC_RATIO_WIDTH_SPIN, options_.ratioWidth, RatioRange(options_.sourceWidth),
            IDC_RATIO_WIDTH_EDIT);
    addSpin(IDC_RATIO_HEIGHT_SPIN, options_.ratioHeight, RatioRange(options_.sourceHeight),
            IDC_RATIO_HEIGHT_EDIT);
    addBox(IDC_FIX_RATIO, options_.fixRatio);
    items.push_back(MakeList(IDC_INTER_TYPE, texts::kInterTypes, options_.interType));
    items.push_back(MakeList(IDC_BOUNDARY_TYPE, texts::kBoundaryTypes, options_.boundaryType));
    addBox(IDC_BOUND_ALPHA, options_.boundAlpha);
    addBox(IDC_CHANGE_BRUSH, options_.changeBrush);
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
            options_.ratioMode = value != 0;
            EnableControls();
            break;
        case IDC_FIX_RATIO:
            options_.fixRatio = value != 0;
            break;
        case IDC_INTER_TYPE:
            options_.interType = value;
            EnableControls();
            break;
        case IDC_BOUNDARY_TYPE:
            options_.boundaryType = value;
            EnableControls();
            break;
        case IDC_WIDTH_SPIN:
            UpdatePartner(IDC_HEIGHT_SPIN, value, o.sourceWidth, o.sourceHeight);
            break;
        case IDC_HEIGHT_SPIN:
            UpdatePartner(IDC_WIDTH_SPIN, value, o.sourceHeight, o.sourceWidth);
            break;
        case IDC_RATIO_WIDTH_SPIN:
            UpdatePartner(IDC_RATIO_HEIGHT_SPIN, value, o.ratioWidth, o.ratioHeight);
            break;
        case IDC_RATIO_HEIGHT_SPIN:
            UpdatePartner(IDC_RATIO_WIDTH_SPIN, value, o.ratioHeight, o.ratioWidth);
            break;
        default:
            break;
    }
}

void ScalingImageDialog::ReadControls() {
    // Without its control an option stays as it is.
    const auto read = [&]<typename Value>(int id, Value& value) {
        if (const KVWin32DialogItem* item = FindItem(id)) {
            value = static_cast<Value>(item->Value());
        }
    };
    read(IDC_BY_PIXELS, options_.ratioMode);
    read(IDC_WIDTH_SPIN, options_.pixelWidth);
    read(IDC_HEIGHT_SPIN, options_.pixelHeight);
    read(IDC_RATIO_WIDTH_SPIN, options_.ratioWidth);
    read(IDC_RATIO_HEIGHT_SPIN, options_.ratioHeight);
    read(IDC_FIX_RATIO, options_.fixRatio);
    read(IDC_INTER_TYPE, options_.interType);
    read(IDC_BOUNDARY_TYPE, options_.boundaryType);
    read(IDC_BOUND_ALPHA, options_.boundAlpha);
    read(IDC_CHANGE_BRUSH, options_.changeBrush);
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
    if (!options_.fixRatio || item == nullptr) {
        return;
    }
    // Or the two would chase each other.
    const bool notified = item->Notifies();
    item->SetNotifies(false);
    item->SetValue(LinkedValue(value, ownReference, partnerReference), true, false);
    item->SetNotifies(notified);
}

}  // namespace imgbasic
