#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/module.h"

namespace imgbasic::viewer {

/// What a batch is about.
struct BatchOrder {
    std::string filter;
    std::vector<std::filesystem::path> inputs;
    std::filesystem::path folder;  ///< gets a PNG for each, or OpenRaster for what has layers
    uint32_t drawColor = 0x000000;
    uint32_t backColor = 0xFFFFFF;
};

/// Lets the module ask once for the options, runs the filter over every file while `owner` waits
/// behind a window with the progress, and shows there what came of it until the user closes it. A
/// file that cannot be read, run or written, or whose result could not keep all of it, costs that
/// file only; none is overwritten.
void RunBatch(const host::Module& module, HWND owner, const BatchOrder& order);

}  // namespace imgbasic::viewer
