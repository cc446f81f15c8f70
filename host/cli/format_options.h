#pragma once

#include "host/image_file.h"

namespace CLI {
class App;
}

namespace imgbasic::host {

/// Adds what a command's files without layers can be asked for.
void AddFormatOptions(CLI::App& app, SaveOptions& save, const char* group);

}  // namespace imgbasic::host
