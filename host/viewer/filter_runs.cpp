#include "host/viewer/filter_runs.h"

#include <utility>

#include "host/openraster.h"
#include "host/viewer/messages.h"

namespace imgbasic::viewer {

using host::RunOutcome;
using host::RunRequest;
using host::RunStatus;

RunOutcome FilterRuns::Run(const std::string& filter, EditedPicture& picture, HWND owner,
                           const Preview& preview) {
    RunRequest request{.filter = filter, .ownerWindow = owner};
    request.onRun = [&](const RunOutcome& outcome) {
        preview(outcome.status == RunStatus::Done ? outcome.document : picture.Content());
    };
    return Finish(std::move(request), picture);
}

RunOutcome FilterRuns::Repeat(EditedPicture& picture, HWND owner) {
    return Finish({.filter = lastFilter_,
                   .ownerWindow = owner,
                   .reference = lastObject_.get(),
                   .options = host::OptionsToRepeat(lastFilter_, *lastObject_)},
                  picture);
}

/// Whether the user agrees to what the result could not keep; asks once for each such thing.
bool FilterRuns::MayLose(const RunRequest& request, EditedPicture& picture) const {
    const bool resizes = module_.isSizeChange(request.filter.c_str());
    std::vector<std::string> losses = host::LossesOf(picture.Content(), resizes);
    std::erase_if(losses,
                  [&](const std::string& loss) { return picture.acceptedLosses.contains(loss); });
    if (!losses.empty() && !AskToLose(request.ownerWindow, phrases::kRunLoses, losses)) {
        return false;
    }
    picture.acceptedLosses.insert(losses.begin(), losses.end());
    return true;
}

RunOutcome FilterRuns::Finish(RunRequest request, EditedPicture& picture) {
    if (!MayLose(request, picture)) {
        return {.status = RunStatus::Cancelled};
    }
    request.current = picture.current;
    request.drawColor = drawColor;
    request.backColor = backColor;
    RunOutcome outcome = host::RunFilter(module_, picture.Content(), request);
    if (outcome.status == RunStatus::Done) {
        picture.Change(std::move(outcome.document));
    }
    if (outcome.status == RunStatus::Done || outcome.status == RunStatus::NothingToDo) {
        lastFilter_ = request.filter;
        lastObject_ = std::move(outcome.object);
        lastMilliseconds_ = outcome.milliseconds;
    }
    return outcome;
}

}  // namespace imgbasic::viewer
