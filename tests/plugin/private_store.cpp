#include "tests/plugin/private_store.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <list>
#include <sstream>
#include <stdexcept>

#include "lib/base/platform.h"
#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/settings.h"

#ifndef _WIN32
#include <unistd.h>
#endif

// No test may read or write the options of the person who runs it.

namespace imgbasic {

#ifdef _WIN32

namespace {

std::string KeyPath(const char* filter) {
    return std::string("Software\\orvex\\brelo2\\plugin\\imgbasic\\") + filter;
}

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

void StoreText(const char* filter, const char* name, const char* text) {
    EXPECT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, KeyPath(filter).c_str(), name, REG_SZ, text,
                              static_cast<DWORD>(std::strlen(text)) + 1),
              ERROR_SUCCESS);
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

void StoreText(const char* filter, const char* name, const char* text) {
    std::ofstream(PrivateStoreFile(), std::ios::app)
        << "[HKEY_CURRENT_USER\\Software\\orvex\\brelo2\\plugin\\imgbasic\\" << filter << "]\n\""
        << name << "\"=\"" << text << "\"\n";
}

#endif

std::string Stored(const char* filter) {
    std::ostringstream numbers;
    for (const StoredNumber& value : ListSettings(*FindFilter(filter))) {
#ifdef _WIN32
        // Read elsewhere only as far as it is a number.
        EXPECT_EQ(RegGetValueA(HKEY_CURRENT_USER, KeyPath(filter).c_str(), value.name,
                               RRF_RT_REG_DWORD, nullptr, nullptr, nullptr),
                  ERROR_SUCCESS)
            << value.name;
#endif
        numbers << (numbers.tellp() > 0 ? " " : "") << value.name << '=' << value.number;
    }
    return numbers.str();
}

void Store(const char* filter, const std::string& numbers) {
    std::istringstream words(numbers);
    std::list<std::string> names;
    std::vector<StoredNumber> values;
    uint32_t number = 0;
    for (std::string name; std::getline(words >> std::ws, name, '=') && words >> number;) {
        values.push_back({names.emplace_back(name).c_str(), number});
    }
    EXPECT_TRUE(WriteStore(filter, values));
}

}  // namespace imgbasic
