#include <string>

#include "lib/base/platform.h"
#include "plugin/imgbasic/settings_store.h"

// The store on Windows: one key a filter in the user's registry, every option a REG_DWORD.

namespace imgbasic {
namespace {

std::string KeyPath(const char* filter) {
    return std::string(kSettingsKey) + filter;
}

}  // namespace

bool QueryStore(const char* filter, std::span<StoredNumber> values) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, KeyPath(filter).c_str(), 0, KEY_READ, &key) !=
        ERROR_SUCCESS) {
        return false;
    }
    for (StoredNumber& value : values) {
        DWORD number = 0;
        DWORD size = sizeof number;
        // Whatever its type is: the bytes of a value count.
        if (RegQueryValueExA(key, value.name, nullptr, nullptr, reinterpret_cast<BYTE*>(&number),
                             &size) == ERROR_SUCCESS) {
            value.number = number;
            value.size = size;
        }
    }
    RegCloseKey(key);
    return true;
}

bool WriteStore(const char* filter, std::span<const StoredNumber> values) {
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, KeyPath(filter).c_str(), 0, nullptr,
                        REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
        return false;
    }
    bool written = true;
    for (const StoredNumber& value : values) {
        const DWORD number = value.number;
        written &=
            RegSetValueExA(key, value.name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                           sizeof number) == ERROR_SUCCESS;
    }
    RegCloseKey(key);
    return written;
}

bool RemoveFromStore(const char* filter) {
    const LSTATUS removed = RegDeleteKeyA(HKEY_CURRENT_USER, KeyPath(filter).c_str());
    return removed == ERROR_SUCCESS || removed == ERROR_FILE_NOT_FOUND;
}

}  // namespace imgbasic
