#pragma once

// The platform seam: on Windows the system's own header, elsewhere the few of
// its types that the exported functions mention, with the same layout.

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#else

#include <cstdint>

struct NativeWindow;
using HWND = NativeWindow*;

/// Signed pixel coordinates; right and bottom are exclusive.
struct RECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

#endif
