#pragma once

#include <windows.h>

#include <shellapi.h>

#include <filesystem>
#include <vector>

namespace imgbasic::viewer {

// The system's ways of choosing files and colours; what the user cancelled comes back empty.

std::vector<std::filesystem::path> AskForPictures(HWND owner);

/// Whether the path ends in ".png" or ".ora".
bool CanBeSavedAs(const std::filesystem::path& path);

/// A path that ends in ".png" or ".ora". `proposed` is such a path, where
/// the dialog begins.
std::filesystem::path AskWhereToSave(HWND owner, const std::filesystem::path& proposed);

std::filesystem::path AskForFolder(HWND owner);

/// What was dropped on a window; `drop` ends.
std::vector<std::filesystem::path> DroppedFiles(HDROP drop);

/// Any colour, 0x00RRGGBB; `color` when cancelled.
uint32_t AskForColor(HWND owner, uint32_t color);

}  // namespace imgbasic::viewer
