#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/options.h"

namespace imgbasic::host {

// What this user has stored for each filter, in a file below the user's configuration folder. The
// module's own runs find nothing there and store nothing: the program decides what a run starts
// from.

/// The options that are stored for the filter, those that have a value that it allows; empty when
/// nothing is stored.
std::vector<OptionValue> StoredOptions(const std::string& filter);

/// Stores the options, the last one of a name, beside what is stored. Options that a filter does
/// not store are passed over. Throws std::runtime_error when the store cannot be written.
void StoreOptions(const std::string& filter, std::span<const OptionValue> options);

/// Removes what is stored for the filter. Throws std::runtime_error when the store cannot be
/// written.
void RemoveStoredOptions(const std::string& filter);

}  // namespace imgbasic::host
