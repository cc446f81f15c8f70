#include "plugin/imgbasic/dialogs.h"

#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {
namespace {

bool ConfirmUnseen(const ImageProcess& process) {
    return process.applyCallback == nullptr || process.applyCallback();
}

}  // namespace

bool RunOptionsDialog(NegaImageProcess& process) {
    return ConfirmUnseen(process);
}

bool RunOptionsDialog(GrayScaleImageProcess& process) {
    return ConfirmUnseen(process);
}

bool RunOptionsDialog(MonoImageProcess& process) {
    return ConfirmUnseen(process);
}

bool RunOptionsDialog(ReduceColorImageProcess& process) {
    return ConfirmUnseen(process);
}

bool RunOptionsDialog(ScalingImageProcess& process) {
    return ConfirmUnseen(process);
}

}  // namespace imgbasic
