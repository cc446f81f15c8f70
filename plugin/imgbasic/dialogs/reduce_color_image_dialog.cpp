#include "plugin/imgbasic/dialogs/reduce_color_image_dialog.h"

#include "lib/ui/kv_win32_dialog_item_check_box.h"
#include "lib/ui/kv_win32_dialog_item_slider.h"
#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/dialogs/item_list.h"
#include "plugin/imgbasic/dialogs/resource.h"

namespace imgbasic {

ReduceColorImageDialog::ReduceColorImageDialog(ReduceColorImageProcess& process)
    : CommonImageDialog(process, OptionsOf(process)), reduce_(process) {
}

KVWin32DialogItemArray ReduceColorImageDialog::Items() const {
    KVWin32DialogItemArray items;
    items.push_back(std::make_unique<KVWin32DialogItemSlider>(
        IDC_COLORS_SLIDER, reduce_.ReduceColor, 1, 256, IDC_COLORS_EDIT, IDC_COLORS_SPIN));
    items.push_back(MakeList(IDC_DITHER_TYPE, texts::kDitherTypes, reduce_.DitherType));
    items.push_back(MakeList(IDC_TARGET_TYPE, texts::kTargetTypes, reduce_.TargetType));
    items.push_back(
        std::make_unique<KVWin32DialogItemCheckBox>(IDC_SHARE_PALETTE, reduce_.SharePalette));
    items.push_back(
        std::make_unique<KVWin32DialogItemCheckBox>(IDC_GRADUATE_REDUCE, reduce_.GraduateReduce));
    return items;
}

}  // namespace imgbasic
