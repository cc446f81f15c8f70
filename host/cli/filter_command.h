#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/driver.h"
#include "host/image_file.h"
#include "host/scaled_size.h"

namespace CLI {
class App;
}

namespace imgbasic::host {

/// One `imgbasic FILTER ...` as the user gave it.
struct FilterCommand {
    std::string filter;
    std::vector<std::filesystem::path> inputs;
    std::filesystem::path output;
    SaveOptions save;
    bool acceptLoss = false;  ///< go on where the result cannot keep everything
    size_t jobs = 1;
    bool quiet = false;
    bool verbose = false;

    std::optional<int32_t> target;  ///< a TargetKind
    std::optional<int32_t> layer;   ///< of the current position
    std::optional<int32_t> subLayer;
    uint32_t drawColor = 0x000000;
    uint32_t backColor = 0xFFFFFF;
    std::vector<OptionValue> options;
    bool remember = false;
    SizeRequest size;  ///< scaling only
};

/// Adds the command of every filter to the command line; parsing one calls `run` with it.
void AddFilterCommands(CLI::App& app, const std::function<void(const FilterCommand&)>& run);

/// Runs the filter over all inputs. False when any of them failed, which has been reported. Throws
/// UsageError.
bool RunFilterCommand(const Module& module, const FilterCommand& command);

}  // namespace imgbasic::host
