#pragma once

#include <cstdint>
#include <string>

namespace imgbasic::host {

/// Throws FileError, naming `file` and the memory needed, when `pictures` of `width` x `height`
/// pixels do not fit the memory that is free now.
void RequireMemory(const std::string& file, int64_t width, int64_t height, size_t pictures);

}  // namespace imgbasic::host
