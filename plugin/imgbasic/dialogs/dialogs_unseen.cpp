#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/dialogs/dialog_rules.h"
#include "plugin/imgbasic/dialogs/dialog_turn.h"
#include "plugin/imgbasic/settings.h"

// Where there is no window system, a dialog is answered as by a user who opens it and executes.

namespace imgbasic {
namespace {

/// `settle` completes the loaded options.
template <typename Settle>
int Answer(ImageProcess& process, const FilterRow& filter, Settle&& settle) {
    const DialogTurn turn;
    if (!turn.IsMine()) {
        return 0;
    }
    LoadSettings(process, filter);
    settle();
    if (process.applyCallback == nullptr) {
        return 1;
    }
    if (!process.applyCallback()) {
        return -1;
    }
    SaveSettings(process, filter);
    return 1;
}

}  // namespace

int RunOptionsDialog(ImageProcess& process, const FilterRow& filter) {
    return Answer(process, filter, [] {});
}

int RunOptionsDialog(ScalingImageProcess& process) {
    return Answer(process, kRow<ScalingImageProcess>,
                  [&] { ScalingOptions(process).StoreIn(process); });
}

}  // namespace imgbasic
