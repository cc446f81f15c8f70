#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/ascii.h"
#include "lib/base/atomic_replacement.h"
#include "plugin/imgbasic/settings_store.h"

// The store where there is no registry: one text file in the form of a registry export. Lines
// that mean nothing here are kept as they are.

namespace imgbasic {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSignature = "REGEDIT4";
constexpr std::string_view kNumberMark = "dword:";
/// Far beyond what the filters write; a larger file is somebody else's and stays untouched.
constexpr size_t kLargestFile = size_t{1} << 20;

using Lines = std::vector<std::string>;

/// The user's home as the password database names it; empty when it names none.
fs::path HomeOfUser() {
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    while (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < kLargestFile) {
        buffer.resize(buffer.size() * 2);
    }
    return found != nullptr && found->pw_dir != nullptr ? fs::path(found->pw_dir) : fs::path();
}

fs::path StorePath() {
    if (ImgbasicSettingsFile != nullptr) {
        return ImgbasicSettingsFile();
    }
    const fs::path home = HomeOfUser();
    return home.is_absolute() ? home / ".config" / "imgbasic" / "settings.reg" : fs::path();
}

/// A file descriptor that closes itself.
class File {
  public:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    ~File() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    int Get() const { return descriptor_; }

  private:
    int descriptor_;
};

/// The file's text; nothing when it cannot be read or is longer than ours may be.
std::optional<std::string> ReadText(int descriptor) {
    std::string text;
    std::array<char, 4096> part;
    ssize_t got = 1;
    while (got != 0 && text.size() <= kLargestFile) {
        got = read(descriptor, part.data(), part.size());
        if (got < 0 && errno != EINTR) {
            return std::nullopt;
        }
        text.append(part.data(), got < 0 ? 0 : static_cast<size_t>(got));
    }
    return text.size() <= kLargestFile ? std::optional(text) : std::nullopt;
}

/// The file's lines without their ends; none when there is no such file, nothing when it cannot
/// be read or is not ours to read.
std::optional<Lines> ReadLines(const fs::path& path) {
    if (path.empty()) {
        return std::nullopt;
    }
    // Without O_NONBLOCK a named pipe would block until somebody writes to it.
    const File file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.Get() < 0) {
        return errno == ENOENT ? std::optional(Lines{}) : std::nullopt;
    }
    struct stat status {};
    if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const auto text = ReadText(file.Get());
    // Text in 16-bit units, as the registry's editor may export it, has zero bytes.
    if (!text || text->find('\0') != std::string::npos) {
        return std::nullopt;
    }
    Lines lines;
    for (size_t begin = 0; begin < text->size();) {
        const size_t end = std::min(text->find('\n', begin), text->size());
        lines.push_back(text->substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

/// Changes the lines by `edit`; whether that made a difference.
bool Changes(const std::function<void(Lines&)>& edit, Lines& lines) {
    const Lines before = lines;
    edit(lines);
    return lines != before;
}

/// Changes the file by `edit`; false when that is impossible.
bool ChangeStore(const std::function<void(Lines&)>& edit) {
    const fs::path path = FollowLinks(StorePath());
    // Without a dialog every run confirms its options, and few runs change any; the others leave
    // no trace.
    auto lines = ReadLines(path);
    if (!lines || !Changes(edit, *lines)) {
        return lines.has_value();
    }
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    AtomicReplacement file;
    if (file.Lock(path) != 0) {
        return false;
    }
    // What another process stored before it gave the lock away is to stay.
    lines = ReadLines(path);
    if (!lines || !Changes(edit, *lines)) {
        return lines.has_value();
    }
    std::string text;
    for (const std::string& line : *lines) {
        text += line;
        text += '\n';
    }
    return text.size() <= kLargestFile && file.Commit(text) == 0;
}

std::string_view Trimmed(std::string_view line) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (line.starts_with(kByteOrderMark)) {
        line.remove_prefix(kByteOrderMark.size());
    }
    constexpr std::string_view kBlank = " \t\r";
    const size_t begin = std::min(line.find_first_not_of(kBlank), line.size());
    return line.substr(begin, line.find_last_not_of(kBlank) + 1 - begin);
}

std::string SectionLine(const char* filter) {
    return std::string("[HKEY_CURRENT_USER\\") + kSettingsKey + filter + "]";
}

bool IsSectionLine(std::string_view line) {
    return Trimmed(line).starts_with('[');
}

/// What stands behind `"name"=` in the line, if it is that value's.
std::optional<std::string_view> ValueText(std::string_view line, std::string_view name) {
    line = Trimmed(line);
    if (line.size() < name.size() + 3 || line[0] != '"' ||
        !EqualIgnoringCase(line.substr(1, name.size()), name) ||
        line.substr(name.size() + 1, 2) != "\"=") {
        return std::nullopt;
    }
    return line.substr(name.size() + 3);
}

std::optional<uint32_t> ParseNumber(std::string_view text) {
    if (!EqualIgnoringCase(text.substr(0, kNumberMark.size()), kNumberMark)) {
        return std::nullopt;
    }
    text.remove_prefix(kNumberMark.size());
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                    : std::nullopt;
}

std::string ValueLine(const StoredNumber& value) {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", value.number);
    return std::string("\"") + value.name + "\"=" + std::string(kNumberMark) + digits;
}

/// A section's lines, from behind its heading to the next one or the end.
struct Section {
    size_t begin;
    size_t end;
};

/// The sections of this filter; an import takes them one after the other.
std::vector<Section> SectionsOf(const Lines& lines, const char* filter) {
    const std::string heading = SectionLine(filter);
    std::vector<Section> sections;
    bool inside = false;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (IsSectionLine(lines[i])) {
            inside = EqualIgnoringCase(Trimmed(lines[i]), heading);
            if (inside) {
                sections.push_back({i + 1, i + 1});
            }
        } else if (inside) {
            sections.back().end = i + 1;
        }
    }
    return sections;
}

void SetValue(Lines& lines, Section& section, const StoredNumber& value) {
    bool replaced = false;
    size_t behindLast = section.begin;
    for (size_t i = section.begin; i < section.end; ++i) {
        if (ValueText(lines[i], value.name)) {
            lines[i] = ValueLine(value);
            replaced = true;
        }
        if (!Trimmed(lines[i]).empty()) {
            behindLast = i + 1;
        }
    }
    if (!replaced) {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(behindLast), ValueLine(value));
        ++section.end;
    }
}

}  // namespace

bool QueryStore(const char* filter, std::span<StoredNumber> values) {
    const auto lines = ReadLines(StorePath());
    if (!lines) {
        return false;
    }
    const std::vector<Section> sections = SectionsOf(*lines, filter);
    for (const Section& section : sections) {
        for (size_t i = section.begin; i < section.end; ++i) {
            for (StoredNumber& value : values) {
                if (const auto text = ValueText((*lines)[i], value.name)) {
                    const auto number = ParseNumber(*text);
                    value.number = number.value_or(0);
                    value.size = number ? sizeof *number : 0;
                }
            }
        }
    }
    return !sections.empty();
}

bool WriteStore(const char* filter, std::span<const StoredNumber> values) {
    return ChangeStore([&](Lines& lines) {
        if (lines.empty()) {
            lines.emplace_back(kSignature);
        }
        std::vector<Section> sections = SectionsOf(lines, filter);
        if (sections.empty()) {
            lines.emplace_back();
            lines.push_back(SectionLine(filter));
            sections.push_back({lines.size(), lines.size()});
        }
        for (const StoredNumber& value : values) {
            SetValue(lines, sections.back(), value);
        }
    });
}

bool RemoveFromStore(const char* filter) {
    return ChangeStore([&](Lines& lines) {
        const std::vector<Section> sections = SectionsOf(lines, filter);
        for (auto section = sections.rbegin(); section != sections.rend(); ++section) {
            const auto first = lines.begin() + static_cast<std::ptrdiff_t>(section->begin);
            lines.erase(first - 1, lines.begin() + static_cast<std::ptrdiff_t>(section->end));
        }
    });
}

}  // namespace imgbasic
