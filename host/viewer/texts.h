#pragma once

#include <string>
#include <string_view>

namespace imgbasic::viewer {

/// What the viewer says, in the order of the table.
enum class TextId {
    AppName,
    Untitled,
    FileMenu,
    Open,
    Save,
    SaveAs,
    Quit,
    EditMenu,
    Undo,
    Redo,
    DrawColor,
    BackColor,
    ViewMenu,
    ZoomIn,
    ZoomOut,
    Fit,
    ActualSize,
    FilterMenu,
    Repeat,
    BatchMenu,
    HelpMenu,
    About,
    AboutText,
    LayerColumn,
    OpacityColumn,
    Opacity,
    PictureFiles,
    PngFile,
    OpenRasterFile,
    ChooseFolder,
    SaveChanges,
    CannotOpen,
    CannotSave,
    CannotRun,
    CannotStart,
    Remarks,
    NoMemory,
    Progress,
    Cancel,
    Close,
    BatchDone,
    BatchStopped,
    Count
};

/// In the user's language: Japanese, or English.
const wchar_t* TextOf(TextId id);

/// UTF-8 as the system's functions take it.
std::wstring Wide(std::string_view utf8);

}  // namespace imgbasic::viewer
