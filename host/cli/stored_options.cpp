#include "host/cli/stored_options.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "plugin/imgbasic/filters.h"
#include "plugin/imgbasic/settings.h"

namespace imgbasic::host {
namespace {

namespace fs = std::filesystem;

const FilterRow& RowOf(std::string_view filter) {
    return *std::ranges::find(kFilterRows, filter, &FilterRow::name);
}

fs::path FolderIn(const char* variable) {
    const char* const value = std::getenv(variable);
    const fs::path folder = value != nullptr ? value : "";
    return folder.is_absolute() ? folder : fs::path();
}

/// Empty where the environment names no folder.
std::string SettingsFile() {
    fs::path folder = FolderIn("XDG_CONFIG_HOME");
    if (folder.empty() && !FolderIn("HOME").empty()) {
        folder = FolderIn("HOME") / ".config";
    }
    return folder.empty() ? "" : folder / "imgbasic" / "settings.reg";
}

/// Lets the user's file be the store as long as it exists; otherwise there is none.
class OpenStore {
  public:
    OpenStore() : file_(SettingsFile()) { current_ = this; }
    ~OpenStore() { current_ = nullptr; }
    OpenStore(const OpenStore&) = delete;
    OpenStore& operator=(const OpenStore&) = delete;

    static const char* File() { return current_ != nullptr ? current_->file_.c_str() : ""; }

    [[noreturn]] void Fail(const std::string& filter, const char* action) const {
        const std::string fault = "the options of " + filter + " could not be " + action;
        throw std::runtime_error(
            file_.empty() ? fault + ": neither HOME nor XDG_CONFIG_HOME names a folder; set one"
                          : file_ + ": " + fault + "; make the file and its folder writable");
    }

  private:
    inline static const OpenStore* current_ = nullptr;
    std::string file_;
};

}  // namespace

std::vector<OptionValue> StoredOptions(const std::string& filter) {
    const OpenStore store;
    std::vector<OptionValue> options;
    for (const StoredNumber& stored : ListSettings(RowOf(filter))) {
        const OptionValue option = Option(filter, stored.name, static_cast<int32_t>(stored.number));
        if (option.option->Allows(option.value)) {
            options.push_back(option);
        }
    }
    return options;
}

void StoreOptions(const std::string& filter, std::span<const OptionValue> options) {
    std::vector<StoredNumber> numbers;
    for (const auto& [option, value] : options) {
        if (option->isStored) {
            const auto number = static_cast<uint32_t>(value);
            numbers.push_back({option->name, number, sizeof number});
        }
    }
    const OpenStore store;
    if (!WriteStore(filter.c_str(), numbers)) {
        store.Fail(filter, "stored");
    }
}

void RemoveStoredOptions(const std::string& filter) {
    const OpenStore store;
    if (!RemoveFromStore(filter.c_str())) {
        store.Fail(filter, "removed");
    }
}

}  // namespace imgbasic::host

namespace imgbasic {

/// Asked by every copy of the store in the process, the module's included.
extern "C" const char* ImgbasicSettingsFile() {
    return host::OpenStore::File();
}

}  // namespace imgbasic
