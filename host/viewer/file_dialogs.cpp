#include "host/viewer/file_dialogs.h"

#include <shobjidl.h>

#include <algorithm>
#include <array>

#include "host/viewer/phrases.h"
#include "host/viewer/window.h"
#include "host/wic_library.h"

namespace imgbasic::viewer {

using host::Check;
using host::ComPtr;

namespace {

constexpr const wchar_t* kPicturePattern = L"*.png;*.jpg;*.jpeg;*.bmp;*.tif;*.tiff;*.ora";
constexpr std::array<const wchar_t*, 2> kSavedTypes{L".png", L".ora"};

template <typename Dialog>
ComPtr<Dialog> MakeDialog(const CLSID& id, FILEOPENDIALOGOPTIONS further) {
    ComPtr<Dialog> dialog;
    Check(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(dialog.GetAddressOf())));
    FILEOPENDIALOGOPTIONS options = 0;
    Check(dialog->GetOptions(&options));
    Check(dialog->SetOptions(options | FOS_FORCEFILESYSTEM | further));
    return dialog;
}

std::filesystem::path PathOf(IShellItem& item) {
    wchar_t* name = nullptr;
    Check(item.GetDisplayName(SIGDN_FILESYSPATH, &name));
    std::filesystem::path path(name);
    CoTaskMemFree(name);
    return path;
}

/// Whether the user confirmed.
bool Confirmed(IFileDialog& dialog, HWND owner) {
    const HRESULT shown = dialog.Show(owner);
    if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED)) {
        return false;
    }
    Check(shown);
    return true;
}

std::filesystem::path ResultOf(IFileDialog& dialog) {
    ComPtr<IShellItem> item;
    Check(dialog.GetResult(item.GetAddressOf()));
    return PathOf(*item.Get());
}

}  // namespace

std::vector<std::filesystem::path> AskForPictures(HWND owner) {
    const auto dialog = MakeDialog<IFileOpenDialog>(CLSID_FileOpenDialog, FOS_ALLOWMULTISELECT);
    const COMDLG_FILTERSPEC pictures{phrases::kPictureFiles.Get(), kPicturePattern};
    Check(dialog->SetFileTypes(1, &pictures));
    std::vector<std::filesystem::path> paths;
    if (!Confirmed(*dialog.Get(), owner)) {
        return paths;
    }
    ComPtr<IShellItemArray> items;
    DWORD count = 0;
    Check(dialog->GetResults(items.GetAddressOf()));
    Check(items->GetCount(&count));
    for (DWORD i = 0; i < count; ++i) {
        ComPtr<IShellItem> item;
        Check(items->GetItemAt(i, item.GetAddressOf()));
        paths.push_back(PathOf(*item.Get()));
    }
    return paths;
}

bool CanBeSavedAs(const std::filesystem::path& path) {
    return std::ranges::any_of(kSavedTypes, [&](const wchar_t* extension) {
        return _wcsicmp(path.extension().c_str(), extension) == 0;
    });
}

std::filesystem::path AskWhereToSave(HWND owner, const std::filesystem::path& proposed) {
    const auto dialog = MakeDialog<IFileSaveDialog>(CLSID_FileSaveDialog, FOS_OVERWRITEPROMPT);
    const COMDLG_FILTERSPEC types[] = {{phrases::kPngFile.Get(), L"*.png"},
                                       {phrases::kOpenRasterFile.Get(), L"*.ora"}};
    const std::filesystem::path extension = proposed.extension();
    Check(dialog->SetFileTypes(2, types));
    Check(dialog->SetFileTypeIndex(extension == kSavedTypes[1] ? 2 : 1));
    ComPtr<IShellItem> folder;
    if (SUCCEEDED(SHCreateItemFromParsingName(proposed.parent_path().c_str(), nullptr,
                                              IID_PPV_ARGS(folder.GetAddressOf())))) {
        Check(dialog->SetFolder(folder.Get()));
    }
    Check(dialog->SetFileName(proposed.stem().c_str()));
    Check(dialog->SetDefaultExtension(extension.c_str() + 1));
    if (!Confirmed(*dialog.Get(), owner)) {
        return {};
    }
    std::filesystem::path path = ResultOf(*dialog.Get());
    if (!CanBeSavedAs(path)) {
        UINT type = 1;
        Check(dialog->GetFileTypeIndex(&type));
        path += kSavedTypes[type - 1];
    }
    return path;
}

std::filesystem::path AskForFolder(HWND owner) {
    const auto dialog = MakeDialog<IFileOpenDialog>(CLSID_FileOpenDialog, FOS_PICKFOLDERS);
    Check(dialog->SetTitle(phrases::kChooseFolder.Get()));
    return Confirmed(*dialog.Get(), owner) ? ResultOf(*dialog.Get()) : std::filesystem::path();
}

uint32_t AskForColor(HWND owner, uint32_t color) {
    static std::array<COLORREF, 16> custom{};
    CHOOSECOLORW choice{};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = owner;
    choice.rgbResult = Swapped(color);
    choice.lpCustColors = custom.data();
    choice.Flags = CC_FULLOPEN | CC_RGBINIT;
    return ChooseColorW(&choice) != FALSE ? Swapped(choice.rgbResult) : color;
}

std::vector<std::filesystem::path> DroppedFiles(HDROP drop) {
    std::vector<std::filesystem::path> paths;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::wstring path(DragQueryFileW(drop, i, nullptr, 0) + 1, L'\0');
        path.resize(DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size())));
        paths.emplace_back(path);
    }
    DragFinish(drop);
    return paths;
}

}  // namespace imgbasic::viewer
