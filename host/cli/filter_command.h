#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/options.h"
#include "host/scaled_size.h"

namespace CLI {
class App;
}

namespace imgbasic::host {

/// One filter with its options, as the user gave them.
struct FilterCommand {
    std::string filter;
    std::optional<int32_t> target;  ///< a TargetKind
    std::optional<int32_t> layer;   ///< of the current position
    std::optional<int32_t> subLayer;
    uint32_t drawColor = 0x000000;
    uint32_t backColor = 0xFFFFFF;
    std::vector<OptionValue> options;
    bool remember = false;
    SizeRequest size;  ///< scaling only
};

/// Adds the options of `command.filter`, which parsing puts into `command`.
void AddFilterOptions(CLI::App& app, FilterCommand& command);

}  // namespace imgbasic::host
