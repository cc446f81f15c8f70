#include <cstdio>

#include "plugin/imgbasic/entry.h"

// show_dialog FILTER: shows the filter's options dialog, as a host does, over an imaginary image.

namespace {

template <typename Function>
Function Find(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace

int main(int argc, char** argv) {
    SetProcessDPIAware();
    const HMODULE module = LoadLibraryA("imgbasic.dll");
    if (argc != 2 || module == nullptr) {
        std::fprintf(stderr, "usage: show_dialog FILTER, beside imgbasic.dll\n");
        return 2;
    }
    const auto prepare = Find<decltype(&ImagePluginPrepare2)>(module, "ImagePluginPrepare2");
    const auto dialog = Find<decltype(&ImagePluginDialog)>(module, "ImagePluginDialog");
    const auto dispose = Find<decltype(&ImagePluginDispose)>(module, "ImagePluginDispose");
    imgbasic::ImageProcess* object =
        prepare(argv[1], 1024, 768, 0, 0, -1, 0x000000, 0xFFFFFF, 0, nullptr, 0, nullptr);
    const int result = dialog(argv[1], object, [] { return true; });
    dispose(argv[1], object);
    FreeLibrary(module);
    std::printf("%d\n", result);
    return 0;
}
