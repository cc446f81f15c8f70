#pragma once

namespace imgbasic {

struct FilterRow;
class ImageProcess;
class ScalingImageProcess;

/// Lets the user settle the options of a filter with a preview, starting from those that are
/// stored: 1 when they were confirmed, -1 when not, 0 at once while another dialog is open. With an
/// applyCallback the host runs for previews and on confirmation, may end the dialog as cancelled by
/// refusing, and what was confirmed is stored. Where there is no window system the dialog is
/// answered unseen, as by a user who confirms at once.
int RunOptionsDialog(ImageProcess& process, const FilterRow& filter);

/// The same for "scaling", whose dialog has no preview and settles the new size, too.
int RunOptionsDialog(ScalingImageProcess& process);

}  // namespace imgbasic
