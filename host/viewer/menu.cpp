#include "host/viewer/menu.h"

#include <iterator>
#include <span>

#include "host/viewer/phrases.h"
#include "lib/base/wide_text.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::viewer {
namespace {

/// A menu's entry; a line where the command is 0.
struct Entry {
    int command = 0;
    Phrase text{};
    const wchar_t* keyText = L"";
};

constexpr Entry kFileEntries[] = {
    {kOpen, phrases::kOpen, L"Ctrl+O"},           {kSave, phrases::kSave, L"Ctrl+S"},
    {kSaveAs, phrases::kSaveAs, L"Ctrl+Shift+S"}, {},
    {kQuit, phrases::kQuit, L"Alt+F4"},
};

constexpr Entry kEditEntries[] = {
    {kUndo, phrases::kUndo, L"Ctrl+Z"}, {kRedo, phrases::kRedo, L"Ctrl+Y"}, {},
    {kDrawColor, phrases::kDrawColor},  {kBackColor, phrases::kBackColor},
};

constexpr Entry kViewEntries[] = {
    {kZoomIn, phrases::kZoomIn, L"+"},
    {kZoomOut, phrases::kZoomOut, L"-"},
    {kFit, phrases::kFit, L"Ctrl+0"},
    {kActualSize, phrases::kActualSize, L"Ctrl+1"},
};

constexpr Entry kRepeatEntries[] = {{kRepeat, phrases::kRepeat, L"Ctrl+F"}, {}};
constexpr Entry kHelpEntries[] = {{kAbout, phrases::kAbout}};

constexpr ACCEL kKeys[] = {
    {FVIRTKEY | FCONTROL, 'O', kOpen},
    {FVIRTKEY | FCONTROL, 'S', kSave},
    {FVIRTKEY | FCONTROL | FSHIFT, 'S', kSaveAs},
    {FVIRTKEY | FCONTROL, 'Z', kUndo},
    {FVIRTKEY | FCONTROL, 'Y', kRedo},
    {FVIRTKEY | FCONTROL | FSHIFT, 'Z', kRedo},
    {FVIRTKEY, VK_ADD, kZoomIn},
    {FVIRTKEY, VK_OEM_PLUS, kZoomIn},
    {FVIRTKEY | FSHIFT, VK_OEM_PLUS, kZoomIn},
    {FVIRTKEY | FCONTROL, VK_OEM_PLUS, kZoomIn},
    {FVIRTKEY, VK_SUBTRACT, kZoomOut},
    {FVIRTKEY, VK_OEM_MINUS, kZoomOut},
    {FVIRTKEY | FCONTROL, VK_OEM_MINUS, kZoomOut},
    {FVIRTKEY | FCONTROL, '0', kFit},
    {FVIRTKEY | FCONTROL, '1', kActualSize},
    {FVIRTKEY | FCONTROL, 'F', kRepeat},
};

HMENU MakePopup(std::span<const Entry> entries) {
    const HMENU menu = CreatePopupMenu();
    for (const Entry& entry : entries) {
        if (entry.command == 0) {
            AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
            continue;
        }
        std::wstring text = entry.text.Get();
        if (*entry.keyText != L'\0') {
            text.append(L"\t").append(entry.keyText);
        }
        AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(entry.command), text.c_str());
    }
    return menu;
}

void Add(HMENU bar, const Phrase& title, HMENU popup) {
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), title.Get());
}

}  // namespace

HMENU MakeMenu(const host::Module& module) {
    const HMENU filters = MakePopup(kRepeatEntries);
    const HMENU batch = CreatePopupMenu();
    int index = 0;
    for (const FilterRow& row : kFilterRows) {
        const std::wstring name = DisplayName(module, row.name);
        const std::wstring asking = name + L"…";
        const auto at = static_cast<UINT_PTR>(index++);
        AppendMenuW(filters, MF_STRING, kFirstFilter + at,
                    (row.dialog != 0 ? asking : name).c_str());
        if (module.isBatchEnable(row.name)) {
            AppendMenuW(batch, MF_STRING, kFirstBatch + at, asking.c_str());
        }
    }
    const HMENU bar = CreateMenu();
    Add(bar, phrases::kFileMenu, MakePopup(kFileEntries));
    Add(bar, phrases::kEditMenu, MakePopup(kEditEntries));
    Add(bar, phrases::kViewMenu, MakePopup(kViewEntries));
    Add(bar, phrases::kFilterMenu, filters);
    Add(bar, phrases::kBatchMenu, batch);
    Add(bar, phrases::kHelpMenu, MakePopup(kHelpEntries));
    return bar;
}

void EnableCommands(HMENU popup, const std::function<bool(int command)>& canDo) {
    for (int i = 0; i < GetMenuItemCount(popup); ++i) {
        const bool can = canDo(static_cast<int>(GetMenuItemID(popup, i)));
        EnableMenuItem(popup, static_cast<UINT>(i), MF_BYPOSITION | (can ? MF_ENABLED : MF_GRAYED));
    }
}

HACCEL MakeAccelerators() {
    return CreateAcceleratorTableW(const_cast<ACCEL*>(kKeys), static_cast<int>(std::size(kKeys)));
}

std::string FilterAt(int index) {
    return kFilterRows.at(static_cast<size_t>(index)).name;
}

std::wstring DisplayName(const host::Module& module, const std::string& filter) {
    const char* const name = module.getName(filter.c_str());
    return name != nullptr ? WideFromShiftJis(name) : WideFromUtf8(filter);
}

}  // namespace imgbasic::viewer
