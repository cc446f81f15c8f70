#pragma once

#include <cstdint>
#include <string>

namespace imgbasic::host {

/// Throws FileError, naming `file` and the memory needed, when `layers` layers of
/// `width` x `height` pixels, and one more for the result of a run, do not fit the memory that is
/// free now.
void RequireMemory(const std::string& file, int64_t width, int64_t height, size_t layers);

}  // namespace imgbasic::host
