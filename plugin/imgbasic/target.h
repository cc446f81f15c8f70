#pragma once

#include "lib/image/pixels/row_kernel.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic {

/// Whether a filter announces its merged-image result through resultKind.
enum class MergedResult { Announced, Silent };

/// What a filter is to do with one visited item.
enum class TargetAction {
    Refuse,        ///< answer false
    Nothing,       ///< answer true, write nothing
    PassRect,      ///< answer true after handing inRect on
    ProcessLayer,  ///< process inRect of src
    ProcessMerged  ///< process the whole merged image
};

/// Selects by TargetType and the visited position. For a merged-image run it also tells the host
/// that the items below the topmost one are used up.
TargetAction SelectTarget(const ImageProcess& process, const ExecuteArgs& args);

/// Selects the current layer, whatever TargetType and inRect.
TargetAction SelectCurrent(const ImageProcess& process, const ExecuteArgs& args);

/// The Execute of a point filter: runs `row(dst, src, count, store)` (see ForEachRun) over the
/// selected target, clipped to the image, and reports the area. False for a layer in a folder
/// that the target cannot mean, and when the host never handed over the merged image.
template <typename RowFunction>
bool ExecuteOnTarget(const ImageProcess& process, const ExecuteArgs& args, MergedResult announce,
                     RowFunction&& row) {
    const RECT image{0, 0, process.width, process.height};
    const RGBA16* source = args.src;
    const RECT* area = args.inRect;
    switch (SelectTarget(process, args)) {
        case TargetAction::Refuse:
            return false;
        case TargetAction::Nothing:
            return true;
        case TargetAction::PassRect:
            PassRect(args);
            return true;
        case TargetAction::ProcessLayer:
            break;
        case TargetAction::ProcessMerged:
            if (process.mergedImage == nullptr) {
                return false;
            }
            if (announce == MergedResult::Announced) {
                StoreThrough(args.resultKind, 1);
            }
            source = process.mergedImage;
            area = &image;
            break;
    }
    if (args.outRect != nullptr) {
        *args.outRect = *area;
    }
    if (args.dst != nullptr && source != nullptr) {
        ForEachRun(args.dst, source, process.width, ClippedTo(process, *area), row);
    }
    return true;
}

}  // namespace imgbasic
