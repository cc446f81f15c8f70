#pragma once

#include <vector>

#include "plugin/imgbasic/settings_store.h"

namespace imgbasic {

// What each filter remembers of the options that its user last confirmed. The functions exist for
// NegaImageProcess, GrayScaleImageProcess, MonoImageProcess, ReduceColorImageProcess and
// ScalingImageProcess.

/// Loads the stored options over those in the object. Numbers out of range become valid ones;
/// without anything stored the object stays as it is.
template <typename Process>
void LoadSettings(Process& process);

/// Stores the object's options. A store that cannot be written is not reported.
template <typename Process>
void SaveSettings(const Process& process);

/// The options that are stored for the filter of this name, unchecked, in the order in which they
/// are written; nothing for any other name.
std::vector<StoredNumber> ListSettings(const char* filter);

}  // namespace imgbasic
