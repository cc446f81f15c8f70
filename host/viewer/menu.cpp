#include "host/viewer/menu.h"

#include <iterator>
#include <span>

#include "host/viewer/texts.h"
#include "lib/base/wide_text.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::viewer {
namespace {

/// A menu's entry; a line where the command is 0.
struct Entry {
    int command = 0;
    TextId text{};
    const wchar_t* keyText = L"";
};

constexpr Entry kFileEntries[] = {
    {kOpen, TextId::Open, L"Ctrl+O"},           {kSave, TextId::Save, L"Ctrl+S"},
    {kSaveAs, TextId::SaveAs, L"Ctrl+Shift+S"}, {},
    {kQuit, TextId::Quit, L"Alt+F4"},
};

constexpr Entry kEditEntries[] = {
    {kUndo, TextId::Undo, L"Ctrl+Z"}, {kRedo, TextId::Redo, L"Ctrl+Y"}, {},
    {kDrawColor, TextId::DrawColor},  {kBackColor, TextId::BackColor},
};

constexpr Entry kViewEntries[] = {
    {kZoomIn, TextId::ZoomIn, L"+"},
    {kZoomOut, TextId::ZoomOut, L"-"},
    {kFit, TextId::Fit, L"Ctrl+0"},
    {kActualSize, TextId::ActualSize, L"Ctrl+1"},
};

constexpr Entry kRepeatEntries[] = {{kRepeat, TextId::Repeat, L"Ctrl+F"}, {}};
constexpr Entry kHelpEntries[] = {{kAbout, TextId::About}};

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
        std::wstring text = TextOf(entry.text);
        if (*entry.keyText != L'\0') {
            text.append(L"\t").append(entry.keyText);
        }
        AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(entry.command), text.c_str());
    }
    return menu;
}

void Add(HMENU bar, TextId title, HMENU popup) {
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), TextOf(title));
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
    Add(bar, TextId::FileMenu, MakePopup(kFileEntries));
    Add(bar, TextId::EditMenu, MakePopup(kEditEntries));
    Add(bar, TextId::ViewMenu, MakePopup(kViewEntries));
    Add(bar, TextId::FilterMenu, filters);
    Add(bar, TextId::BatchMenu, batch);
    Add(bar, TextId::HelpMenu, MakePopup(kHelpEntries));
    return bar;
}

void EnableCommands(HMENU menu, const CommandState& state) {
    const auto enable = [menu](int command, bool can) {
        EnableMenuItem(menu, static_cast<UINT>(command), can ? MF_ENABLED : MF_GRAYED);
    };
    for (int command = kFirstFilter; GetMenuState(menu, static_cast<UINT>(command), 0) != ~0U;
         ++command) {
        enable(command, state.isOpen);
    }
    enable(kSave, state.isOpen);
    enable(kSaveAs, state.isOpen);
    enable(kUndo, state.canUndo);
    enable(kRedo, state.canRedo);
    enable(kRepeat, state.isOpen && state.canRepeat);
}

HACCEL MakeAccelerators() {
    return CreateAcceleratorTableW(const_cast<ACCEL*>(kKeys), static_cast<int>(std::size(kKeys)));
}

std::string FilterAt(int index) {
    return kFilterRows.at(static_cast<size_t>(index)).name;
}

std::wstring DisplayName(const host::Module& module, const std::string& filter) {
    const char* const name = module.getName(filter.c_str());
    return name != nullptr ? WideFromShiftJis(name) : Wide(filter);
}

}  // namespace imgbasic::viewer
