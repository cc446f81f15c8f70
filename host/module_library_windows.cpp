#include <windows.h>

#include <system_error>

#include "host/module.h"
#include "host/module_library.h"

namespace imgbasic::host {
namespace {

constexpr const char* kFileName = "imgbasic.dll";

}  // namespace

const char* const kAdjustScaleSymbol = "?ImagePluginAdjustScale@@YAXPEBDPEAXHHPEAN2@Z";
const char* const kModuleWayOut = "put the right imgbasic.dll beside the program";

void* OpenLibrary(const std::filesystem::path& path) {
    return LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

std::string LibraryFault() {
    return std::system_category().message(static_cast<int>(GetLastError()));
}

void* FindSymbol(void* library, const char* symbol) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), symbol));
}

void LibraryCloser::operator()(void* library) const {
    FreeLibrary(static_cast<HMODULE>(library));
}

std::filesystem::path FindModule(const std::filesystem::path& /*installedFolder*/) {
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    auto path = std::filesystem::path(program).replace_filename(kFileName);
    if (!exists(path)) {
        throw ModuleError(path.string() + ": the filter module is not there; " + kModuleWayOut);
    }
    return path;
}

}  // namespace imgbasic::host
