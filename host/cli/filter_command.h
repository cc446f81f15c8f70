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
    bool remembered = false;         ///< start from the stored options
    bool remember = false;           ///< store the options after the run
    SizeRequest size;                ///< scaling only
    std::vector<std::string> notes;  ///< on the flags, for the user
};

/// Adds the options of `command.filter`, which parsing puts into `command`.
void AddFilterOptions(CLI::App& app, FilterCommand& command);

/// The same for those options alone that can be stored.
void AddStoredOptions(CLI::App& app, FilterCommand& command);

}  // namespace imgbasic::host
