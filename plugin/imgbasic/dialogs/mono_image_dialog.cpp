#include "plugin/imgbasic/dialogs/mono_image_dialog.h"

#include "lib/ui/kv_win32_dialog_item_slider.h"
#include "plugin/imgbasic/dialogs/item_list.h"
#include "plugin/imgbasic/dialogs/resource.h"
#include "plugin/imgbasic/mono.h"

namespace imgbasic {

MonoImageDialog::MonoImageDialog(MonoImageProcess& process)
    : CommonImageDialog(process, OptionsOf(process)), mono_(process) {
}

KVWin32DialogItemArray MonoImageDialog::Items() const {
    KVWin32DialogItemArray items;
    items.push_back(std::make_unique<KVWin32DialogItemSlider>(
        IDC_THRESHOLD_SLIDER, mono_.Threshold, 1, 255, IDC_THRESHOLD_EDIT, IDC_THRESHOLD_SPIN));
    items.push_back(MakeList(IDC_TARGET_TYPE, texts::kTargetTypes, mono_.TargetType));
    return items;
}

}  // namespace imgbasic
