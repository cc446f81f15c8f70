#pragma once

#include "host/gimp/filter_job.h"
#include "host/scaled_size.h"

namespace imgbasic::host {

/// The size that a job's options ask for. Without the percentages a side that is 0 follows from
/// the other one. Throws SizeError.
PixelSize SizeAskedFor(const FilterJob& job);

/// Scales the whole image, as one step for Undo; GIMP itself scales masks, channels, paths, guides
/// and the selection. Throws SizeError, RunError, FileError and std::bad_alloc before anything in
/// the image changes.
void ScaleImage(const Module& module, const FilterJob& job);

}  // namespace imgbasic::host
