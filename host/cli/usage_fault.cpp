#include "host/cli/usage_fault.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <numeric>
#include <string_view>

#include "host/cli/command_tree.h"

namespace imgbasic::host {
namespace {

/// What other programs call what a command does.
struct Synonym {
    std::string_view word;
    const char* command;
};

constexpr Synonym kSynonyms[] = {
    {"grayscale", "gray"},       {"greyscale", "gray"},      {"desaturate", "gray"},
    {"invert", "nega"},          {"negate", "nega"},         {"negative", "nega"},
    {"threshold", "mono"},       {"bilevel", "mono"},        {"monochrome", "mono"},
    {"posterize", "col_reduce"}, {"quantize", "col_reduce"}, {"dither", "col_reduce"},
    {"resize", "scaling"},       {"thumbnail", "scaling"},   {"shrink", "scaling"},
    {"separate", "chan_decomp"}, {"split", "chan_decomp"},   {"combine", "chan_merge"},
    {"join", "chan_merge"},      {"identify", "info"},       {"filters", "list"},
};

/// How many letters have to be added, left out, replaced or swapped with their neighbour to make
/// one word of the other: the optimal string alignment distance.
size_t Distance(std::string_view a, std::string_view b) {
    std::vector<size_t> beforeLast;
    std::vector<size_t> last(b.size() + 1);
    std::iota(last.begin(), last.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        std::vector<size_t> row(b.size() + 1, i);
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast = std::move(last);
        last = std::move(row);
    }
    return last.back();
}

std::string Question(const std::string& meant) {
    return meant.empty() ? "" : "; did you mean " + meant + "?";
}

std::vector<std::string> CommandNames(const CLI::App& app) {
    std::vector<std::string> commands;
    for (const NamedCommand& command : CommandsOf(app)) {
        commands.push_back(command.name);
    }
    return commands;
}

bool IsFile(const std::string& word) {
    std::error_code ignored;
    return std::filesystem::exists(word, ignored);
}

std::string DescribeFlag(const CLI::App& app, const std::string& flag) {
    const std::vector<CLI::App*> parsed = app.get_subcommands();
    const CLI::App& command = parsed.empty() ? app : *parsed.front();
    std::vector<std::string> flags;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            flags.push_back("--" + name);
        }
    }
    if (IsFile(flag)) {
        return command.get_name() + " has no option " + flag + "; the file of that name is ./" +
               flag;
    }
    const std::string name = flag.substr(0, flag.find('='));
    return command.get_name() + " has no option " + name + Question(NearestWord(name, flags));
}

}  // namespace

std::string NearestWord(std::string_view word, const std::vector<std::string>& known) {
    constexpr size_t kLettersForAFault = 3;
    size_t least = std::max(word.size() / kLettersForAFault, size_t{1}) + 1;
    std::string nearest;
    for (const std::string& candidate : known) {
        if (const size_t distance = Distance(word, candidate); distance < least) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string DescribeUnknown(const std::string& word, const std::vector<std::string>& known) {
    const auto* const synonym = std::ranges::find(kSynonyms, word, &Synonym::word);
    const std::string meant =
        synonym != std::end(kSynonyms) ? synonym->command : NearestWord(word, known);
    return "there is no filter '" + word + "'" + Question(meant);
}

std::string DescribeFault(const CLI::App& app, const CLI::ParseError& fault) {
    const std::vector<std::string> unknown = app.remaining();
    if (dynamic_cast<const CLI::ExtrasError*>(&fault) != nullptr && !unknown.empty()) {
        if (unknown.front().starts_with('-')) {
            return DescribeFlag(app, unknown.front());
        }
        const std::vector<std::string> commands = CommandNames(app);
        if (!commands.empty() && app.get_subcommands().empty()) {
            if (IsFile(unknown.front())) {
                return "'" + unknown.front() +
                       "' is a file; the filter comes first, as in imgbasic nega IN -o OUT";
            }
            return DescribeUnknown(unknown.front(), commands);
        }
    }
    if (dynamic_cast<const CLI::RequiredError*>(&fault) != nullptr) {
        const bool isOutput = std::string_view(fault.what()).starts_with("--output");
        return isOutput ? "no output is named; write -o OUT"
                        : "no input is named; write it behind the command";
    }
    return fault.what();
}

std::string DescribeFaultAndHelp(const CLI::App& app, const CLI::ParseError& fault) {
    const std::string text = DescribeFault(app, fault);
    return text + (text.ends_with('?') ? " " : "; ") + "--help tells more";
}

}  // namespace imgbasic::host
