#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>
#include <vector>

#include "fuzz/checks.h"
#include "lib/base/ascii.h"
#include "plugin/imgbasic/settings_store.h"

namespace imgbasic {
namespace {

std::string Text() {
    std::ifstream file(ImgbasicSettingsFile(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The lines but those that could be the stored value's.
std::vector<std::string> OtherLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        std::string lower = line;
        std::ranges::transform(lower, lower.begin(), LowerCase);
        if (lower.find("\"threshold\"=") == lower.npos) {
            lines.push_back(line);
        }
    }
    return lines;
}

auto Read(const char* filter, const char* name) {
    StoredNumber value{name};
    QueryStore(filter, {&value, 1});
    return std::pair(value.number, value.size);
}

}  // namespace

std::string CheckSettings(std::span<const uint8_t> data) {
    const std::string text(data.begin(), data.end());
    std::filesystem::create_directories(
        std::filesystem::path(ImgbasicSettingsFile()).parent_path());
    std::ofstream(ImgbasicSettingsFile(), std::ios::binary) << text;
    const auto sibling = Read("mono", "TargetType");
    const auto namesake = Read("gray", "Threshold");

    const StoredNumber value{"Threshold", static_cast<uint32_t>(text.size() * 0x9E3779B9)};
    if (!WriteStore("mono", {&value, 1})) {
        const bool isRefused = text.find('\0') != text.npos && Text() == text;
        return isRefused ? "" : "text is refused, or changed all the same";
    }
    if (Read("mono", value.name) != std::pair(value.number, uint32_t{4})) {
        return "the stored value is not there";
    }
    if (Read("mono", "TargetType") != sibling || Read("gray", "Threshold") != namesake) {
        return "another value changed";
    }
    constexpr size_t kNewLines = 3;  // signature, blank line, heading
    const auto before = OtherLines(text);
    const auto after = OtherLines(Text());
    if (after.size() > before.size() + kNewLines ||
        std::ranges::mismatch(before, after).in1 != before.end()) {
        return "other lines changed";
    }
    const bool isRemoved = RemoveFromStore("mono") && !QueryStore("mono", {});
    return isRemoved && Read("gray", "Threshold") == namesake ? "" : "removed too little or much";
}

}  // namespace imgbasic
