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

/// Does what `action` says and reports the area, clipped to the image, that
/// `operation(source, rect)` is to process; its answer is the result, true where there are no
/// pixels. False for a layer in a folder that the target cannot mean, and when the host never
/// handed over the merged image.
template <typename Operation>
bool ProcessTarget(const ImageProcess& process, const ExecuteArgs& args, TargetAction action,
                   MergedResult announce, Operation&& operation) {
    const RECT image{0, 0, process.width, process.height};
    const RGBA16* source = args.src;
    const RECT* area = args.inRect;
    switch (action) {
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
            source = process.mergedImage;
            area = &image;
            break;
    }
    if (args.outRect != nullptr) {
        *args.outRect = *area;
    }
    const PixelRect rect = ClippedTo(process, *area);
    if (source != nullptr && !rect.IsEmpty() && !operation(source, rect)) {
        return false;
    }
    if (action == TargetAction::ProcessMerged && announce == MergedResult::Announced) {
        StoreThrough(args.resultKind, 1);
    }
    return true;
}

/// The Execute of a point filter: runs `row(dst, src, count, store)` (see ForEachRun) over the
/// selected target.
template <typename RowFunction>
bool ExecuteOnTarget(const ImageProcess& process, const ExecuteArgs& args, MergedResult announce,
                     RowFunction&& row) {
    return ProcessTarget(process, args, SelectTarget(process, args), announce,
                         [&](const RGBA16* source, PixelRect rect) {
                             if (args.dst != nullptr) {
                                 ForEachRun(args.dst, source, process.width, rect, row);
                             }
                             return true;
                         });
}

}  // namespace imgbasic
