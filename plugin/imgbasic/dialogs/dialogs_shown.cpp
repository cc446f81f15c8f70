#include "lib/ui/wide_text.h"
#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/dialogs/common_image_dialog.h"
#include "plugin/imgbasic/dialogs/gray_scale_image_dialog.h"
#include "plugin/imgbasic/dialogs/mono_image_dialog.h"
#include "plugin/imgbasic/dialogs/reduce_color_image_dialog.h"
#include "plugin/imgbasic/dialogs/resource.h"
#include "plugin/imgbasic/dialogs/scaling_image_dialog.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"
#include "plugin/imgbasic/settings.h"
#include "plugin/imgbasic/texts.h"

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

template <typename Dialog, typename Process>
bool Show(Process& process, int templateId, const Text& caption) {
    if (shownDialog != nullptr) {
        return false;
    }
    LoadSettings(process);
    Dialog dialog(process);
    KVWin32DialogWindowCreateInfo info;
    info.className = L"brelo2 plugin";
    info.title = WideFromShiftJis(caption.shiftJis);
    info.style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    info.exStyle = WS_EX_DLGMODALFRAME;
    info.owner = process.ownerWindow;
    info.templateId = templateId;
    info.items = dialog.Items();
    const Showing showing(dialog);
    if (!dialog.Create(&info) || dialog.RunModal() != IDOK) {
        return false;
    }
    if (process.applyCallback != nullptr) {
        SaveSettings(process);
    }
    return true;
}

}  // namespace

bool RunOptionsDialog(NegaImageProcess& process) {
    return Show<CommonImageDialog>(process, IDD_NEGA, texts::kNega);
}

bool RunOptionsDialog(GrayScaleImageProcess& process) {
    return Show<GrayScaleImageDialog>(process, IDD_GRAY, texts::kGray);
}

bool RunOptionsDialog(MonoImageProcess& process) {
    return Show<MonoImageDialog>(process, IDD_MONO, texts::kMono);
}

bool RunOptionsDialog(ReduceColorImageProcess& process) {
    return Show<ReduceColorImageDialog>(process, IDD_REDUCE_COLOR, texts::kColReduce);
}

bool RunOptionsDialog(ScalingImageProcess& process) {
    return Show<ScalingImageDialog>(process, IDD_SCALING, texts::kScaling);
}

}  // namespace imgbasic
