#include "lib/ui/wide_text.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/dialogs/common_image_dialog.h"
#include "plugin/imgbasic/dialogs/scaling_image_dialog.h"
#include "plugin/imgbasic/settings.h"

namespace imgbasic {
namespace {

/// The dialog being shown. What it runs through the host must not open another one.
const KVWin32DialogWindow* shownDialog = nullptr;

class Showing {
  public:
    explicit Showing(const KVWin32DialogWindow& dialog) { shownDialog = &dialog; }
    ~Showing() { shownDialog = nullptr; }
    Showing(const Showing&) = delete;
    Showing& operator=(const Showing&) = delete;
};

/// Loads and saves around the modal run of a dialog that `make` makes of the loaded options.
template <typename MakeDialog>
bool Show(ImageProcess& process, const FilterRow& filter, MakeDialog&& make) {
    if (shownDialog != nullptr) {
        return false;
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
    const Showing showing(dialog);
    if (!dialog.Create(&info) || dialog.RunModal() != IDOK) {
        return false;
    }
    if (process.applyCallback != nullptr) {
        SaveSettings(process, filter);
    }
    return true;
}

}  // namespace

bool RunOptionsDialog(ImageProcess& process, const FilterRow& filter) {
    return Show(process, filter, [&] { return CommonImageDialog(process, filter); });
}

bool RunOptionsDialog(ScalingImageProcess& process) {
    return Show(process, kRow<ScalingImageProcess>, [&] { return ScalingImageDialog(process); });
}

}  // namespace imgbasic
