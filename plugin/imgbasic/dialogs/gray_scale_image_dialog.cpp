#include "plugin/imgbasic/dialogs/gray_scale_image_dialog.h"

#include "plugin/imgbasic/dialogs/item_list.h"
#include "plugin/imgbasic/dialogs/resource.h"
#include "plugin/imgbasic/gray.h"

namespace imgbasic {

GrayScaleImageDialog::GrayScaleImageDialog(GrayScaleImageProcess& process)
    : CommonImageDialog(process, OptionsOf(process)), gray_(process) {
}

KVWin32DialogItemArray GrayScaleImageDialog::Items() const {
    KVWin32DialogItemArray items;
    items.push_back(MakeList(IDC_CALC_MODE, texts::kCalcModes, gray_.CalcMode));
    items.push_back(MakeList(IDC_COLOR_MODE, texts::kColorModes, gray_.ColorMode));
    items.push_back(MakeList(IDC_TARGET_TYPE, texts::kTargetTypes, gray_.TargetType));
    return items;
}

}  // namespace imgbasic
