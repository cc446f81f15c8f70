#include "host/cli/command_tree.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace imgbasic::host {
namespace {

void Collect(const CLI::App& app, const std::string& prefix, std::vector<NamedCommand>& commands) {
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (!command->get_group().empty()) {
            commands.push_back({prefix + command->get_name(), command});
            Collect(*command, prefix + command->get_name() + " ", commands);
        }
    }
}

void AddText(CLI::App& app, const char* name, std::string (*text)(const CLI::App&)) {
    app.add_subcommand(name)->group("")->callback(
        [&app, text] { std::fputs(text(app).c_str(), stdout); });
}

}  // namespace

void AddGeneratedTexts(CLI::App& app) {
    AddText(app, "print-manual", ManualPage);
    AddText(app, "print-completion", BashCompletion);
}

std::vector<NamedCommand> CommandsOf(const CLI::App& app) {
    std::vector<NamedCommand> commands;
    Collect(app, "", commands);
    return commands;
}

std::vector<std::string> FlagsOf(const CLI::Option& option) {
    std::vector<std::string> flags;
    if (option.get_group().empty()) {
        return flags;
    }
    for (const std::string& name : option.get_snames()) {
        flags.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        flags.push_back("--" + name);
    }
    return flags;
}

}  // namespace imgbasic::host
