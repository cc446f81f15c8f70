#pragma once

namespace imgbasic {

class GrayScaleImageProcess;
class MonoImageProcess;
class NegaImageProcess;
class ReduceColorImageProcess;
class ScalingImageProcess;

/// Lets the user settle a filter's options, starting from those that are stored; true when they
/// were confirmed. With an applyCallback the host runs for previews and on confirmation, may end
/// the dialog as cancelled by refusing, and what was confirmed is stored. While another dialog is
/// open the answer is false. Where there is no window system the dialog is answered unseen, as by
/// a user who confirms at once.
bool RunOptionsDialog(NegaImageProcess& process);
bool RunOptionsDialog(GrayScaleImageProcess& process);
bool RunOptionsDialog(MonoImageProcess& process);
bool RunOptionsDialog(ReduceColorImageProcess& process);
bool RunOptionsDialog(ScalingImageProcess& process);

}  // namespace imgbasic
