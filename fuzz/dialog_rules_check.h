#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace imgbasic {

/// Uses a dialog with a preview, or that of scaling, in the steps that `data` says. Returns which
/// rule a step broke, empty when none did.
std::string CheckDialogRules(std::span<const uint8_t> data);

}  // namespace imgbasic
