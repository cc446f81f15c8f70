#pragma once

#include "host/cli/filter_command.h"

namespace imgbasic::host {

/// Throws CLI::ValidationError when an option that was given on the command line of `command` can
/// have no effect, because of what another one says. `app` has parsed it.
void RefuseIneffective(const CLI::App& app, const FilterCommand& command);

}  // namespace imgbasic::host
