#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace imgbasic::host {

/// The filters that store something: all of them, or the one that is named. Throws UsageError.
std::vector<std::string> StoringFilters(const std::string& name);

/// Adds `imgbasic settings` with its commands, which show, store and remove the options that this
/// user has stored for each filter.
void AddSettingsCommand(CLI::App& app);

}  // namespace imgbasic::host
