#include <dlfcn.h>

#include "host/module.h"
#include "host/module_library.h"

namespace imgbasic::host {
namespace {

constexpr const char* kFileName = "libimgbasic.so";

}  // namespace

const char* const kAdjustScaleSymbol = "_Z22ImagePluginAdjustScalePKcPviiPdS2_";
const char* const kModuleWayOut = "name the right file with --module";

void* OpenLibrary(const std::filesystem::path& path) {
    // A name without a folder would be looked for in the system's own folders.
    return dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string LibraryFault() {
    return dlerror();
}

void* FindSymbol(void* library, const char* symbol) {
    return dlsym(library, symbol);
}

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

}  // namespace imgbasic::host
