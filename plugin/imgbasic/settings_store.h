#pragma once

#include <cstdint>
#include <span>

namespace imgbasic {

/// Where each filter's values are, under its name: below the registry's HKEY_CURRENT_USER.
constexpr char kSettingsKey[] = "Software\\orvex\\brelo2\\plugin\\imgbasic\\";

/// A number under its name in the per-user store.
struct StoredNumber {
    const char* name;
    uint32_t number = 0;
    /// Bytes of `number` that the store holds, 1 to 4, the lowest first; 0 when there is no such
    /// value or it is longer than a number.
    uint32_t size = 0;
};

/// Fills in what is stored under each name for a filter; false when nothing ever was.
bool QueryStore(const char* filter, std::span<StoredNumber> values);

/// Stores every number as a 32-bit value; false when the store cannot be written.
bool WriteStore(const char* filter, std::span<const StoredNumber> values);

/// Removes everything that is stored for a filter; false when the store cannot be written.
bool RemoveFromStore(const char* filter);

#ifndef _WIN32
/// A program may define this to name the file that takes the place of the user's own (UTF-8,
/// never null); it is asked on every use, and by every copy of the store in the process.
extern "C" __attribute__((weak, visibility("default"))) const char* ImgbasicSettingsFile();
#endif

}  // namespace imgbasic
