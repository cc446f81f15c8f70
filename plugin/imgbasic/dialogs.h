#pragma once

namespace imgbasic {

class GrayScaleImageProcess;
class MonoImageProcess;
class NegaImageProcess;
class ReduceColorImageProcess;
class ScalingImageProcess;

/// Lets the user settle a filter's options; true when they were confirmed. Where there is no
/// window system the dialog is answered without being shown: the options are handed to the host
/// through applyCallback, when there is one, and count as confirmed when it agrees.
bool RunOptionsDialog(NegaImageProcess& process);
bool RunOptionsDialog(GrayScaleImageProcess& process);
bool RunOptionsDialog(MonoImageProcess& process);
bool RunOptionsDialog(ReduceColorImageProcess& process);
bool RunOptionsDialog(ScalingImageProcess& process);

}  // namespace imgbasic
