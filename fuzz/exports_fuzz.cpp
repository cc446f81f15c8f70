#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/exports_check.h"

/// Nobody's options: there is no such file, and none can be made.
extern "C" const char* ImgbasicSettingsFile() {
    return "/dev/null/settings.reg";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const std::string fault = imgbasic::CheckExports({data, size}); !fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
