#pragma once

#include "host/gimp/filter_job.h"

namespace imgbasic::host {

// What the channel filters do to an image, each as one step for Undo. They throw RunError,
// FileError and std::bad_alloc before anything in the image changes.

/// Puts a group of four channel layers in the place of the job's layer, which looks the same:
/// below alpha, above it red, green and blue, added and limited to what is below. Returns the
/// group.
gint32 DecomposeChannels(const Module& module, const FilterJob& job);

/// Puts the layer that four channel layers make in their place: the job's drawable is one of them
/// or the group that holds them. A group that holds nothing else goes too, and the layer is then
/// composed as the group was. Returns the layer.
gint32 MergeChannels(const Module& module, const FilterJob& job);

}  // namespace imgbasic::host
