#pragma once

#include <vector>

#include "plugin/imgbasic/filter_row.h"
#include "plugin/imgbasic/settings_store.h"

namespace imgbasic {

// What each filter remembers of the options that its user last confirmed: those of its row.

/// Loads the stored options over those in an object of the filter. Numbers out of range become
/// valid ones; without anything stored the object stays as it is.
void LoadSettings(ImageProcess& process, const FilterRow& filter);

/// Stores the object's options. A store that cannot be written is not reported.
void SaveSettings(const ImageProcess& process, const FilterRow& filter) noexcept;

/// The options that are stored for the filter, unchecked, in the order in which they are written.
std::vector<StoredNumber> ListSettings(const FilterRow& filter);

}  // namespace imgbasic
