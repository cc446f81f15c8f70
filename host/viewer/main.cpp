#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include <exception>

#include "host/viewer/main_window.h"
#include "host/viewer/messages.h"

namespace imgbasic::viewer {
namespace {

/// Their whole paths: the system's dialogs change the current folder.
std::vector<std::filesystem::path> NamedFiles() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::filesystem::path> files(words + 1, words + count);
    for (std::filesystem::path& file : files) {
        file = std::filesystem::absolute(file);
    }
    LocalFree(static_cast<HLOCAL>(words));
    return files;
}

void Run() {
    const host::Module module = host::LoadModule(host::FindModule());
    MainWindow window(module);
    ShowWindow(window.Handle(), SW_SHOWDEFAULT);
    window.Open(NamedFiles());
    window.Run();
}

}  // namespace
}  // namespace imgbasic::viewer

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, wchar_t* /*line*/,
                    int /*show*/) {
    namespace viewer = imgbasic::viewer;
    InitCommonControls();
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    int status = 1;
    try {
        viewer::Run();
        status = 0;
    } catch (const std::exception&) {
        viewer::ShowBox(nullptr, viewer::phrases::kCannotStart, viewer::FaultText(), MB_ICONERROR);
    }
    if (SUCCEEDED(com)) {
        CoUninitialize();
    }
    return status;
}
