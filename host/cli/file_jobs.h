#pragma once

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <vector>

#include "host/cli/report.h"

namespace imgbasic::host {

/// One image to read and one to write.
struct FileJob {
    std::filesystem::path input;
    std::filesystem::path output;
};

/// A command line that cannot be meant.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Where every input goes: into `output` when that is a folder or ends in a slash, under its own
/// name, otherwise to `output` itself. Throws UsageError when two would be the same file.
std::vector<FileJob> PlanJobs(const std::vector<std::filesystem::path>& inputs,
                              const std::filesystem::path& output);

/// Does every job, in `workers` processes at a time when that is more than one, and shows the
/// progress of several. `work` reports its own faults and answers whether it succeeded; a worker
/// that dies is reported here. False when any job failed.
bool DoJobs(const std::vector<FileJob>& jobs, size_t workers, const Report& report,
            const std::function<bool(const FileJob&)>& work);

}  // namespace imgbasic::host
