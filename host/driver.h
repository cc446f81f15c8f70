#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/document.h"
#include "host/module.h"
#include "host/options.h"

namespace imgbasic::host {

/// A place in a document: an item, or one layer of the folder that is that item. The layers of
/// folders inside it count in the order in which they are listed, top to bottom.
struct LayerPosition {
    int32_t item = 0;
    int32_t layer = -1;  ///< -1 for the item itself

    bool operator==(const LayerPosition&) const = default;
};

/// A point that stays with the picture when its size changes, in pixels.
struct DocumentPoint {
    LayerPosition position;
    double x = 0;
    double y = 0;
};

struct RunOutcome;

/// One use of a filter.
struct RunRequest {
    std::string filter{};
    LayerPosition current{};
    uint32_t drawColor = 0x000000;  ///< 0x00RRGGBB
    uint32_t backColor = 0xFFFFFF;  ///< 0x00RRGGBB
    HWND ownerWindow = nullptr;
    ImageProcess* reference = nullptr;  ///< a batch's or an earlier run's object; borrowed
    /// Set for the run, over what the module loaded or the user chose.
    std::vector<OptionValue> options{};
    bool rememberOptions = false;  ///< leave `options` in place, so that the module stores them
    std::vector<DocumentPoint> points{};
    /// Called after every run that did not fail, while the module's dialog may still be open: what
    /// is to be seen of a preview.
    std::function<void(const RunOutcome& outcome)> onRun{};
};

enum class RunStatus {
    Done,
    NothingToDo,  ///< a success that leaves the document as it was
    Cancelled,    ///< by the user
    Failed,
};

struct RunOutcome {
    RunStatus status = RunStatus::NothingToDo;
    std::string fault{};  ///< for people; of Failed only
    Document document{};  ///< the changed document; of Done only, but see RunFilter
    double scaleX = 1;    ///< by how much brushes grow with the picture
    double scaleY = 1;
    std::vector<DocumentPoint> points{};  ///< where the request's points are now
    double milliseconds = 0;              ///< that the run took, without the user's time
    /// What ran, with its options, to be the reference of a later run; of Done and NothingToDo.
    FilterObject object{};
};

/// Runs a filter from its creation to its disposal, its dialog included: the module asks for the
/// run, perhaps several times, while its dialog is open, and the last run counts when the dialog
/// is confirmed. `document` is not changed. One run at a time: another one, started from inside
/// the module's dialog, fails.
RunOutcome RunFilter(const Module& module, const Document& document, const RunRequest& request);

/// The same for a host that needs the document no longer, which then is not copied: a second run
/// from the same dialog fails, and the document is the outcome's also when there was nothing to
/// do.
RunOutcome RunFilter(const Module& module, Document&& document, const RunRequest& request);

/// The object that holds the options of a batch, settled by the module (it may show its dialog).
/// Null when the filter has no batch use or the user cancelled; `cancelled` tells which.
FilterObject PrepareBatch(const Module& module, const std::string& filter, HWND ownerWindow,
                          bool& cancelled);

}  // namespace imgbasic::host
