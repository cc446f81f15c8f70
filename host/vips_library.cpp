#include "host/vips_library.h"

namespace imgbasic::host {
namespace {

thread_local int impossibleSides = 0;

}  // namespace

void StartVips() {
    static const bool started = [] {
        if (VIPS_INIT("imgbasic") != 0) {
            throw FileError("the image library cannot be started; check its installation");
        }
        g_log_set_handler(
            "VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK | G_LOG_FLAG_RECURSION),
            [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
        // An image's sides are properties with a range, and a warning is all that leaving it
        // brings.
        g_log_set_handler(
            "GLib-GObject", G_LOG_LEVEL_WARNING,
            [](const gchar*, GLogLevelFlags, const gchar*, gpointer) { ++impossibleSides; },
            nullptr);
        // A file that is read again may have changed.
        vips_cache_set_max(0);
        return true;
    }();
    (void)started;
}

void StartCodecs() {
    StartVips();
}

int ImpossibleSides() {
    return impossibleSides;
}

std::string LastLine(const vips::VError& error) {
    vips_error_clear();
    std::string text = error.what();
    text.erase(text.find_last_not_of('\n') + 1);
    return text.substr(text.rfind('\n') + 1);
}

}  // namespace imgbasic::host
