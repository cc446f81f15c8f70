#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "host/viewer/texts.h"

namespace imgbasic::viewer {

/// A message box: a headline, and below it what the shared code says (UTF-8).
void Say(HWND owner, TextId headline, const std::string& detail, UINT icon);

/// The same for remarks on what went well; nothing when there are none.
void SayNotes(HWND owner, const std::vector<std::string>& notes);

/// Asks whether the changes to a file are to be saved: IDYES, IDNO or IDCANCEL.
int AskToSave(HWND owner, const std::wstring& file);

}  // namespace imgbasic::viewer
