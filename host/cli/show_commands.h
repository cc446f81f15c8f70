#pragma once

#include <filesystem>

#include "host/module.h"

namespace imgbasic::host {

/// `imgbasic list`: what the module says about each of its filters.
void ListFilters(const Module& module);

/// `imgbasic info FILE`: size and layers of an image. Throws FileError.
void ShowFile(const std::filesystem::path& path);

}  // namespace imgbasic::host
