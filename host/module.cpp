#include "host/module.h"

#include "host/module_library.h"

namespace imgbasic::host {
namespace {

template <typename Function>
void Find(const Module& module, const std::filesystem::path& path, const char* symbol,
          Function*& function) {
    function = reinterpret_cast<Function*>(FindSymbol(module.library.get(), symbol));
    if (function == nullptr) {
        throw ModuleError(path.string() + ": no filter module, it does not export " + symbol +
                          "; " + kModuleWayOut);
    }
}

}  // namespace

Module LoadModule(const std::filesystem::path& path) {
    Module module;
    module.library.reset(OpenLibrary(path));
    if (!module.library) {
        throw ModuleError(path.string() + ": the filter module cannot be loaded (" +
                          LibraryFault() + "); " + kModuleWayOut);
    }
    Find(module, path, "PluginGetName", module.getName);
    Find(module, path, "ImagePluginIsSizeChange", module.isSizeChange);
    Find(module, path, "ImagePluginIsBatchEnable", module.isBatchEnable);
    Find(module, path, "ImagePluginGetPhase", module.getPhase);
    Find(module, path, "ImagePluginPrepare2", module.prepare);
    Find(module, path, "ImagePluginBatchPrepare", module.batchPrepare);
    Find(module, path, "ImagePluginDialog", module.dialog);
    Find(module, path, "ImagePluginPhase2", module.phase);
    Find(module, path, "ImagePluginExecute4", module.execute);
    Find(module, path, kAdjustScaleSymbol, module.adjustScale);
    Find(module, path, "ImagePluginAdjustLocate2", module.adjustLocate);
    Find(module, path, "ImagePluginDispose", module.dispose);
    Find(module, path, "ImagePluginBatchDispose", module.batchDispose);
    return module;
}

}  // namespace imgbasic::host
