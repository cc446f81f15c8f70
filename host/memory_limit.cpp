#include "host/memory_limit.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

#include <cstdio>
#include <fstream>
#include <limits>

#include "host/image_file.h"

namespace imgbasic::host {
namespace {

/// Bytes that programs can still get without driving others out; unlimited where the system does
/// not tell.
double AvailableMemory() {
#ifdef _WIN32
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) != 0 ? static_cast<double>(status.ullAvailPageFile)
                                              : std::numeric_limits<double>::infinity();
#else
    std::ifstream report("/proc/meminfo");
    std::string key;
    while (report >> key) {
        double kibibytes = 0;
        if (key == "MemAvailable:" && report >> kibibytes) {
            return kibibytes * 1024;
        }
        report.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? static_cast<double>(pages) * static_cast<double>(pageSize)
                                     : std::numeric_limits<double>::infinity();
#endif
}

}  // namespace

double BytesForRun(const std::string& filter, const Document& document, int32_t width,
                   int32_t height) {
    const size_t made = filter == "scaling"       ? CountLayers(document.items)
                        : filter == "chan_decomp" ? 4
                        : filter == "chan_merge"  ? 2
                                                  : 1;
    const bool composes = WholePicture(document) == nullptr;
    return static_cast<double>(made) * PictureBytes(width, height) +
           (composes ? PictureBytes(document.width, document.height) : 0);
}

void RequireMemory(const std::string& file, int64_t width, int64_t height, double bytes) {
    const double available = AvailableMemory();
    if (bytes <= available) {
        return;
    }
    constexpr double kGibibyte = 1024.0 * 1024.0 * 1024.0;
    char sizes[160];
    std::snprintf(sizes, sizeof sizes,
                  "%lld x %lld pixels need %.1f GiB of memory and %.1f GiB are free",
                  static_cast<long long>(width), static_cast<long long>(height), bytes / kGibibyte,
                  available / kGibibyte);
    throw FileError(file + ": " + sizes + "; make the image smaller first");
}

}  // namespace imgbasic::host
