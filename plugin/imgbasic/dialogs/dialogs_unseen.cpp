#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/dialogs/dialog_rules.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"
#include "plugin/imgbasic/settings.h"

// Where there is no window system, a dialog is answered as by a user who opens it and executes.

namespace imgbasic {
namespace {

void SettleSize(ImageProcess& /*process*/) {
}

void SettleSize(ScalingImageProcess& process) {
    ScalingOptions(process).StoreIn(process);
}

template <typename Process>
bool Execute(Process& process) {
    LoadSettings(process);
    SettleSize(process);
    if (process.applyCallback == nullptr) {
        return true;
    }
    if (!process.applyCallback()) {
        return false;
    }
    SaveSettings(process);
    return true;
}

}  // namespace

bool RunOptionsDialog(NegaImageProcess& process) {
    return Execute(process);
}

bool RunOptionsDialog(GrayScaleImageProcess& process) {
    return Execute(process);
}

bool RunOptionsDialog(MonoImageProcess& process) {
    return Execute(process);
}

bool RunOptionsDialog(ReduceColorImageProcess& process) {
    return Execute(process);
}

bool RunOptionsDialog(ScalingImageProcess& process) {
    return Execute(process);
}

}  // namespace imgbasic
