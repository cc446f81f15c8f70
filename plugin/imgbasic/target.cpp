#include "plugin/imgbasic/target.h"

namespace imgbasic {
namespace {

TargetAction SelectMerged(const ExecuteArgs& args) {
    if (args.subLayer >= 0) {
        return TargetAction::Refuse;
    }
    if (args.layer > 0) {
        StoreThrough(args.resultCode, 1);
        return TargetAction::Nothing;
    }
    return TargetAction::ProcessMerged;
}

}  // namespace

TargetAction SelectCurrent(const ImageProcess& process, const ExecuteArgs& args) {
    if (args.layer != process.curLayer) {
        return TargetAction::Nothing;
    }
    if (args.subLayer < 0) {
        return process.curSubLayer < 0 ? TargetAction::ProcessLayer : TargetAction::PassRect;
    }
    if (process.curSubLayer < 0) {
        return TargetAction::Refuse;
    }
    return args.subLayer == process.curSubLayer ? TargetAction::ProcessLayer
                                                : TargetAction::Nothing;
}

TargetAction SelectTarget(const ImageProcess& process, const ExecuteArgs& args) {
    if (process.TargetType != AllLayers && process.TargetType != CurrentLayer) {
        return SelectMerged(args);
    }
    if (args.inRect == nullptr) {
        return TargetAction::Nothing;
    }
    return process.TargetType == CurrentLayer ? SelectCurrent(process, args)
                                              : TargetAction::ProcessLayer;
}

}  // namespace imgbasic
