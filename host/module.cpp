#include "host/module.h"

#include <dlfcn.h>

namespace imgbasic::host {
namespace {

constexpr const char* kFileName = "libimgbasic.so";
constexpr const char* kAdjustScale = "_Z22ImagePluginAdjustScalePKcPviiPdS2_";

void* OpenLibrary(const std::filesystem::path& path) {
    // A name without a folder would be looked for in the system's own folders.
    return dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string OpenFault() {
    return dlerror();
}

void* FindSymbol(void* library, const char* symbol) {
    return dlsym(library, symbol);
}

template <typename Function>
void Find(const Module& module, const std::filesystem::path& path, const char* symbol,
          Function*& function) {
    function = reinterpret_cast<Function*>(FindSymbol(module.library.get(), symbol));
    if (function == nullptr) {
        throw ModuleError(path.string() + ": no filter module, it does not export " + symbol +
                          "; name the right file with --module");
    }
}

}  // namespace

void LibraryCloser::operator()(void* library) const {
    dlclose(library);
}

std::filesystem::path FindModule(const std::filesystem::path& installedFolder) {
    const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto installed = (program / installedFolder).lexically_normal();
    for (const auto& folder : {program, installed}) {
        if (exists(folder / kFileName)) {
            return folder / kFileName;
        }
    }
    throw ModuleError(std::string(kFileName) + ": the filter module is neither in " +
                      program.string() + " nor in " + installed.string() +
                      "; name its file with --module");
}

Module LoadModule(const std::filesystem::path& path) {
    Module module;
    module.library.reset(OpenLibrary(path));
    if (!module.library) {
        throw ModuleError(path.string() + ": the filter module cannot be loaded (" + OpenFault() +
                          "); name its file with --module");
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
    Find(module, path, kAdjustScale, module.adjustScale);
    Find(module, path, "ImagePluginAdjustLocate2", module.adjustLocate);
    Find(module, path, "ImagePluginDispose", module.dispose);
    Find(module, path, "ImagePluginBatchDispose", module.batchDispose);
    return module;
}

}  // namespace imgbasic::host
