#pragma once

namespace CLI {
class App;
}

namespace imgbasic::host {

/// Adds `imgbasic settings` with its commands, which show, store and remove the options that this
/// user has stored for each filter.
void AddSettingsCommand(CLI::App& app);

}  // namespace imgbasic::host
