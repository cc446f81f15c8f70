#pragma once

#include "host/cli/filter_command.h"

namespace imgbasic::host {

/// The flags that were given for `command` and can have no effect because of what others say, each
/// with the reason. `app` has parsed them.
std::vector<std::string> IneffectiveFlags(const CLI::App& app, const FilterCommand& command);

}  // namespace imgbasic::host
