#include "lib/base/wide_text.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/dialogs/common_image_dialog.h"
#include "plugin/imgbasic/dialogs/dialog_turn.h"
#include "plugin/imgbasic/dialogs/scaling_image_dialog.h"
#include "plugin/imgbasic/settings.h"

namespace imgbasic {
namespace {

/// Loads and saves around the modal run of a dialog that `make` makes of the loaded options.
template <typename MakeDialog>
int Show(ImageProcess& process, const FilterRow& filter, MakeDialog&& make) {
    const DialogTurn turn;
    if (!turn.IsMine()) {
        return 0;
    }
    LoadSettings(process, filter);
    auto dialog = make();
    KVWin32DialogWindowCreateInfo info;
    info.className = L"brelo2 plugin";
    info.title = WideFromShiftJis(filter.displayName.shiftJis);
    info.style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    info.exStyle = WS_EX_DLGMODALFRAME;
    info.owner = process.ownerWindow;
    info.templateId = filter.dialog;
    info.items = dialog.Items();
    if (!dialog.Create(&info) || dialog.RunModal() != IDOK) {
        return -1;
    }
    if (process.applyCallback != nullptr) {
        SaveSettings(process, filter);
    }
    return 1;
}

}  // namespace

int RunOptionsDialog(ImageProcess& process, const FilterRow& filter) {
    return Show(process, filter, [&] { return CommonImageDialog(process, filter); });
}

int RunOptionsDialog(ScalingImageProcess& process) {
    return Show(process, kRow<ScalingImageProcess>, [&] { return ScalingImageDialog(process); });
}

}  // namespace imgbasic
