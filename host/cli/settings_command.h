#pragma once

#include <span>
#include <string>

#include "host/options.h"

namespace imgbasic::host {

/// Whether the store has these values of a filter's options, as far as it keeps them; of an option
/// that is named twice, the last.
bool AreStored(const std::string& filter, std::span<const OptionValue> options);

/// `imgbasic settings`: the options that each filter has stored for this user.
void ShowSettings();

/// `imgbasic settings --reset [FILTER]`: removes what a filter has stored, or every filter when
/// `filter` is empty. Throws UsageError for a filter that stores nothing, std::runtime_error when
/// the store cannot be written.
void ResetSettings(const std::string& filter);

}  // namespace imgbasic::host
