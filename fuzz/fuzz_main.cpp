#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/checks.h"

/// Nobody's options, in memory, and gone after each input.
extern "C" const char* ImgbasicSettingsFile() {
    static const std::string file = "/dev/shm/imgbasic_fuzz_" + std::to_string(getpid()) + ".reg";
    return file.c_str();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string fault = imgbasic::IMGBASIC_CHECK({data, size});
    std::remove(ImgbasicSettingsFile());
    if (!fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
