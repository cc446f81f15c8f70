#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "host/viewer/phrases.h"

namespace imgbasic::viewer {

/// A message box with a headline and what belongs to it; the button that was pressed.
int ShowBox(HWND owner, const Phrase& headline, const std::wstring& detail, UINT style);

/// Sentences of the shared code (UTF-8), one a line.
std::wstring Lines(const std::vector<std::string>& sentences);

/// Shows remarks on what went well, if there are any.
void ShowNotes(HWND owner, const std::vector<std::string>& notes);

/// Asks whether to go on although that loses something; `losses` names it, one phrase each.
bool AskToLose(HWND owner, const Phrase& question, const std::vector<std::string>& losses);

/// What the exception says that is being handled.
std::wstring FaultText();

}  // namespace imgbasic::viewer
