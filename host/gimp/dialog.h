#pragma once

#include <memory>

#include "host/gimp/filter_job.h"
#include "host/gimp/target_run.h"

namespace imgbasic::host {

/// Asks for the options of a filter with a target, made of its row, and meanwhile shows the result
/// in the image. Returns what is to be applied, run with the options that the job then has; null
/// when the user cancelled.
std::unique_ptr<TargetRun> AskOptions(const Module& module, FilterJob& job);

/// Asks for the new size and how to scale; false when the user cancelled.
bool AskSize(FilterJob& job);

}  // namespace imgbasic::host
