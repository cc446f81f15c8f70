#pragma once

#include <filesystem>
#include <string>

namespace imgbasic::host {

// What loading a module is on each system; FindModule and LibraryCloser belong to it, too.

/// The decorated name of the one export that has one.
extern const char* const kAdjustScaleSymbol;

/// What a person can do about a module that cannot be used, as the end of a sentence.
extern const char* const kModuleWayOut;

/// Null when it cannot be loaded; LibraryFault() then tells why.
void* OpenLibrary(const std::filesystem::path& path);
std::string LibraryFault();

/// Null when the library does not export it.
void* FindSymbol(void* library, const char* symbol);

}  // namespace imgbasic::host
