#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "plugin/imgbasic/entry.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic::host {

/// A module that cannot be used; the message names the file, the fault and the way out.
class ModuleError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct LibraryCloser {
    void operator()(void* library) const;
};

/// The module's exports, and the loaded library that they live in.
struct Module {
    std::unique_ptr<void, LibraryCloser> library;

    decltype(&PluginGetName) getName = nullptr;
    decltype(&ImagePluginIsSizeChange) isSizeChange = nullptr;
    decltype(&ImagePluginIsBatchEnable) isBatchEnable = nullptr;
    decltype(&ImagePluginGetPhase) getPhase = nullptr;
    decltype(&ImagePluginPrepare2) prepare = nullptr;
    decltype(&ImagePluginBatchPrepare) batchPrepare = nullptr;
    decltype(&ImagePluginDialog) dialog = nullptr;
    decltype(&ImagePluginPhase2) phase = nullptr;
    decltype(&ImagePluginExecute4) execute = nullptr;
    decltype(&ImagePluginAdjustScale) adjustScale = nullptr;
    decltype(&ImagePluginAdjustLocate2) adjustLocate = nullptr;
    decltype(&ImagePluginDispose) dispose = nullptr;
    decltype(&ImagePluginBatchDispose) batchDispose = nullptr;
};

/// The module of the running program: beside it, or in the folder that installing put it in, which
/// is relative to the program's. Throws ModuleError.
std::filesystem::path FindModule(const std::filesystem::path& installedFolder = ".");

/// Loads the module and finds all thirteen exports. Throws ModuleError.
Module LoadModule(const std::filesystem::path& path);

/// Ends a filter object through the export that belongs to its creation.
struct FilterObjectDeleter {
    decltype(&ImagePluginDispose) dispose = nullptr;
    std::string filter;

    void operator()(ImageProcess* object) const { dispose(filter.c_str(), object); }
};

using FilterObject = std::unique_ptr<ImageProcess, FilterObjectDeleter>;

}  // namespace imgbasic::host
