#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/cli/file_options.h"

namespace imgbasic::host {

/// One image to read and one to write.
struct FileJob {
    std::filesystem::path input;
    std::filesystem::path output;
    std::string extension{};  ///< of the output's format; empty where it is that of the input
};

/// A command line that cannot be meant.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Where every input goes: into the output when that is a folder or ends in a slash, under its own
/// name but for the ending of a format that was asked for, otherwise to the output itself. Makes
/// the folder. Throws UsageError when two would be the same file, and where the standard streams
/// cannot be meant.
std::vector<FileJob> PlanJobs(const FileOptions& files);

}  // namespace imgbasic::host
