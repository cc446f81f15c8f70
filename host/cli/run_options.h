#pragma once

#include <string>
#include <vector>

#include "host/cli/run_command.h"

namespace imgbasic::host {

/// The name of the command that runs several filters.
constexpr const char* kRunCommand = "run";

/// Adds the options of kRunCommand, which parsing puts into `command`.
void AddRunOptions(CLI::App& app, RunCommand& command);

/// The program's arguments as the parser can take them: it knows no group of words that ends at
/// "--", so every step of kRunCommand becomes the value of an option.
std::vector<std::string> WithNamedSteps(std::vector<std::string> arguments);

}  // namespace imgbasic::host
