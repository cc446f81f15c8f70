#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "host/module.h"

namespace imgbasic::viewer {

enum Command : int {
    kOpen = 100,
    kSave,
    kSaveAs,
    kQuit,
    kUndo,
    kRedo,
    kDrawColor,
    kBackColor,
    kZoomIn,
    kZoomOut,
    kFit,
    kActualSize,
    kRepeat,
    kAbout,
    kFirstFilter = 200,  ///< and on, in the order of the module's filters
    kFirstBatch = 300,
};

/// The main menu; the filters are called what the module calls them.
HMENU MakeMenu(const host::Module& module);

/// Greys out what cannot be done of a menu that is about to open.
void EnableCommands(HMENU popup, const std::function<bool(int command)>& canDo);

/// The keys of the commands; the caller destroys it.
HACCEL MakeAccelerators();

/// The filter behind a command of the filter or the batch menu.
std::string FilterAt(int index);

/// What the module calls a filter.
std::wstring DisplayName(const host::Module& module, const std::string& filter);

}  // namespace imgbasic::viewer
