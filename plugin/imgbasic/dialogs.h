#pragma once

namespace imgbasic {

struct FilterRow;
class ImageProcess;
class ScalingImageProcess;

/// Lets the user settle the options of a filter with a preview, starting from those that are
/// stored; true when they were confirmed. With an applyCallback the host runs for previews and on
/// confirmation, may end the dialog as cancelled by refusing, and what was confirmed is stored.
/// While another dialog is open the answer is false. Where there is no window system the dialog is
/// answered unseen, as by a user who confirms at once.
bool RunOptionsDialog(ImageProcess& process, const FilterRow& filter);

/// The same for "scaling", whose dialog has no preview and settles the new size, too.
bool RunOptionsDialog(ScalingImageProcess& process);

}  // namespace imgbasic
