#pragma once

#include "lib/base/platform.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier): the linker's

namespace imgbasic {

/// The module that this code is linked into, where its dialog templates are.
inline HINSTANCE ModuleInstance() {
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

}  // namespace imgbasic
