#pragma once

#include <vector>

#include "host/cli/file_options.h"
#include "host/cli/filter_command.h"
#include "host/module.h"

namespace imgbasic::host {

/// A command that runs filters over files, one after the other over each.
struct RunCommand {
    std::vector<FilterCommand> steps;
    FileOptions files;
};

/// False when any of the files failed, which has been reported. Throws UsageError.
bool RunFilters(const Module& module, RunCommand command);

}  // namespace imgbasic::host
