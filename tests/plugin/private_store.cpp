#include "tests/plugin/private_store.h"

#include <filesystem>
#include <stdexcept>
#include <string>

#include "lib/base/platform.h"
#include "plugin/imgbasic/settings_store.h"

#ifndef _WIN32
#include <unistd.h>
#endif

// No test may read or write the options of the person who runs it.

namespace imgbasic {

#ifdef _WIN32

namespace {

constexpr char kStandIn[] = "Software\\imgbasic_tests";

/// A key that stands in for the current user's as long as the program runs.
struct PrivateUser {
    PrivateUser() {
        HKEY key = nullptr;
        if (RegCreateKeyExA(HKEY_CURRENT_USER, kStandIn, 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_ALL_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS ||
            RegOverridePredefKey(HKEY_CURRENT_USER, key) != ERROR_SUCCESS) {
            throw std::runtime_error("no private registry key for the tests");
        }
        RegCloseKey(key);
        RegDeleteTreeA(HKEY_CURRENT_USER, "Software");
    }
    ~PrivateUser() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegDeleteTreeA(HKEY_CURRENT_USER, kStandIn);
    }
};

const PrivateUser privateUser;

}  // namespace

void ClearPrivateStore() {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software");
}

#else

namespace {

struct PrivateFolder {
    PrivateFolder() {
        std::string name = std::filesystem::temp_directory_path() / "imgbasic-tests-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no private folder for the tests");
        }
        file = std::filesystem::path(name) / "deep" / "settings.reg";
    }
    ~PrivateFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(file.parent_path().parent_path(), ignored);
    }
    std::filesystem::path file;
};

}  // namespace

const char* PrivateStoreFile() {
    static const PrivateFolder folder;
    return folder.file.c_str();
}

extern "C" const char* ImgbasicSettingsFile() {
    return PrivateStoreFile();
}

void ClearPrivateStore() {
    std::filesystem::remove(PrivateStoreFile());
}

#endif

}  // namespace imgbasic
