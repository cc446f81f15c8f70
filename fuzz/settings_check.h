#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace imgbasic {

/// Takes `data` for the file that holds the stored options, stores a value in it and removes a
/// filter from it. Returns what differs in what is not to change, or what is not found again;
/// empty when all is well. The file is the program's, ImgbasicSettingsFile.
std::string CheckSettings(std::span<const uint8_t> data);

}  // namespace imgbasic
