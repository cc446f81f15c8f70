#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/driver.h"

namespace imgbasic::viewer {

/// What a batch is about.
struct BatchOrder {
    std::string filter;
    std::vector<std::filesystem::path> inputs;
    std::filesystem::path folder;  ///< gets a PNG for each, or OpenRaster for what has layers
    uint32_t drawColor = 0x000000;
    uint32_t backColor = 0xFFFFFF;
};

struct BatchReport {
    size_t written = 0;
    std::vector<std::string> faults{};  ///< one sentence for each file that was not written
    bool cancelled = false;
};

/// Runs the filter with the options of `reference` over every file. `progress` is called before
/// each, with the number of those done, and returns false to stop. A file that cannot be read, run
/// or written costs that file only; none is overwritten.
BatchReport RunBatch(const host::Module& module, ImageProcess& reference, const BatchOrder& order,
                     const std::function<bool(size_t done)>& progress);

}  // namespace imgbasic::viewer
