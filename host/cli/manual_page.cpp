#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <span>
#include <sstream>

#include "host/cli/command_tree.h"

namespace imgbasic::host {
namespace {

/// Text as roff takes it: no word of it is a request or an escape.
std::string Roff(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if ((c == '.' || c == '\'') && (escaped.empty() || escaped.back() == '\n')) {
            escaped += "\\&";
        }
        if (c == '\\') {
            escaped += "\\e";
        } else if (c == '-') {
            escaped += "\\-";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string Bold(std::string_view text) {
    return "\\fB" + Roff(text) + "\\fR";
}

/// A line of the help that is one of a list: a word and perhaps its meaning, two blanks apart.
std::string ListEntry(std::string_view line) {
    const std::string_view entry = line.substr(line.find_first_not_of(' '));
    const size_t end = std::min(entry.find("  "), entry.size());
    const size_t meaning = std::min(entry.find_first_not_of(' ', end), entry.size());
    const std::string word = Bold(entry.substr(0, end));
    return meaning == entry.size() ? ".br\n" + word + "\n"
                                   : ".TP 12\n" + word + "\n" + Roff(entry.substr(meaning)) + "\n";
}

/// A description of the help, whose lists are indented.
std::string Paragraph(const std::string& description) {
    std::istringstream lines(description);
    std::string page;
    bool isList = false;
    for (std::string line; std::getline(lines, line);) {
        const bool isEntry = line.starts_with("  ");
        if (isEntry != isList) {
            page += isEntry ? ".RS\n.PD 0\n" : ".PD\n.RE\n";
            isList = isEntry;
        }
        page += isEntry ? ListEntry(line) : Roff(line) + "\n";
    }
    return page + (isList ? ".PD\n.RE\n" : "");
}

std::string OptionEntry(const CLI::Option& option) {
    std::string names;
    for (const std::string& flag : FlagsOf(option)) {
        names.append(names.empty() ? "" : ", ").append(Bold(flag));
    }
    if (names.empty()) {
        names = "\\fI" + Roff(option.get_name()) + "\\fR";
    } else if (const std::string type = option.get_type_name(); !type.empty()) {
        names.append(" \\fI").append(Roff(type)).append("\\fR");
    }
    return ".TP\n" + names + "\n" + Paragraph(option.get_description());
}

/// What makes two options the same for a reader.
std::string KeyOf(const CLI::Option& option) {
    return option.get_name(true) + "\n" + option.get_type_name() + "\n" + option.get_description();
}

/// The options that all commands with input files have.
std::vector<const CLI::Option*> SharedOptions(std::span<const NamedCommand> commands) {
    std::map<std::string, size_t> counts;
    size_t runs = 0;
    const CLI::App* last = nullptr;
    for (const auto& [name, command] : commands) {
        if (command->get_option_no_throw("IN") != nullptr) {
            ++runs;
            last = command;
            for (const CLI::Option* option : command->get_options()) {
                ++counts[KeyOf(*option)];
            }
        }
    }
    return last == nullptr ? std::vector<const CLI::Option*>()
                           : last->get_options([&](const CLI::Option* option) {
                                 return counts[KeyOf(*option)] == runs;
                             });
}

std::string CommandEntry(const NamedCommand& command, std::span<const CLI::Option* const> shared) {
    const CLI::App& app = *command.app;
    const auto formatter = std::dynamic_pointer_cast<CLI::Formatter>(app.get_formatter());
    std::string usage = formatter->make_usage(&app, "imgbasic " + command.name);
    usage.erase(0, std::min(usage.find("imgbasic"), usage.size()));
    usage.erase(usage.find_last_not_of('\n') + 1);
    std::string entry = ".SS " + Roff(command.name) + "\n" + Bold(usage) + "\n.PP\n" +
                        Paragraph(app.get_description() + ".");
    for (const CLI::Option* option : app.get_options()) {
        const bool isShared = std::ranges::any_of(
            shared, [&](const CLI::Option* other) { return KeyOf(*other) == KeyOf(*option); });
        if (!isShared && !option->get_group().empty() && option->get_name() != "--help") {
            entry += OptionEntry(*option);
        }
    }
    if (std::string footer = app.get_footer(); !footer.empty()) {
        entry += ".PP\n" + Paragraph(footer.substr(footer.find_first_not_of('\n')));
    }
    return entry;
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
    const std::vector<NamedCommand> commands = CommandsOf(app);
    const std::vector<const CLI::Option*> shared = SharedOptions(commands);
    std::string page = ".TH IMGBASIC 1 \"\" \"" + Roff(app.version()) +
                       "\" \"User Commands\"\n.SH NAME\nimgbasic \\- run image filters over files\n"
                       ".SH SYNOPSIS\n" +
                       Bold("imgbasic") + " [\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n" +
                       ".SH DESCRIPTION\n" + Paragraph(app.get_description()) + ".SH OPTIONS\n";
    for (const CLI::Option* option : app.get_options()) {
        page += OptionEntry(*option);
    }
    page += ".SH COMMANDS\n";
    for (const NamedCommand& command : commands) {
        page += CommandEntry(command, shared);
    }
    page += ".SH OPTIONS OF ALL COMMANDS THAT WRITE PICTURES\n";
    for (const CLI::Option* option : shared) {
        page += OptionEntry(*option);
    }
    return page +
           ".SH EXIT STATUS\n0 when all went well, 1 when a file failed, 2 when the command line "
           "was "
           "wrong.\n";
}

}  // namespace imgbasic::host
