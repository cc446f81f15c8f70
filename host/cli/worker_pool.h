#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "host/cli/file_jobs.h"
#include "host/cli/report.h"

namespace imgbasic::host {

/// Does every job, in `workers` processes when that is more than one, tells which files were
/// written and shows the progress of several. `work` reports its own faults and answers whether it
/// succeeded; a worker that dies is reported here, costs the job that it had, and another one takes
/// its place. Returns how many jobs failed. Throws std::runtime_error when no process can be
/// started.
size_t DoJobs(const std::vector<FileJob>& jobs, size_t workers, const Report& report,
              const std::function<bool(const FileJob&)>& work);

}  // namespace imgbasic::host
