#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace imgbasic {

/// Reads `data` as an image of any format. One that is read whole is written in a lossless format
/// and read again. Returns what differs, empty when nothing does or the file is rejected.
std::string CheckRaster(std::span<const uint8_t> data);

}  // namespace imgbasic
