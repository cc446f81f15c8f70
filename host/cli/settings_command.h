#pragma once

#include <string>

namespace imgbasic::host {

/// `imgbasic settings`: the options that each filter has stored for this user.
void ShowSettings();

/// `imgbasic settings --reset [FILTER]`: removes what a filter has stored, or every filter when
/// `filter` is empty. Throws UsageError for a filter that stores nothing, std::runtime_error when
/// the store cannot be written.
void ResetSettings(const std::string& filter);

}  // namespace imgbasic::host
