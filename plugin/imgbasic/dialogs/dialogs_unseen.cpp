#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/dialogs/dialog_rules.h"
#include "plugin/imgbasic/settings.h"

// Where there is no window system, a dialog is answered as by a user who opens it and executes.

namespace imgbasic {
namespace {

bool Execute(const ImageProcess& process, const FilterRow& filter) {
    if (process.applyCallback == nullptr) {
        return true;
    }
    if (!process.applyCallback()) {
        return false;
    }
    SaveSettings(process, filter);
    return true;
}

}  // namespace

bool RunOptionsDialog(ImageProcess& process, const FilterRow& filter) {
    LoadSettings(process, filter);
    return Execute(process, filter);
}

bool RunOptionsDialog(ScalingImageProcess& process) {
    const FilterRow& filter = kRow<ScalingImageProcess>;
    LoadSettings(process, filter);
    ScalingOptions(process).StoreIn(process);
    return Execute(process, filter);
}

}  // namespace imgbasic
