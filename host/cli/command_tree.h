#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace imgbasic::host {

// The manual page and the completion of the command line are made of the parser's own tables when
// the program is built.

/// Adds the hidden commands that print them.
void AddGeneratedTexts(CLI::App& app);

/// A command and how it is called, such as "settings" or "gray".
struct NamedCommand {
    std::string name;
    const CLI::App* app;
};

/// All commands below `app`, those inside others included, but for the hidden ones.
std::vector<NamedCommand> CommandsOf(const CLI::App& app);

/// An option's spellings, such as "-o" and "--output"; none for what is told by its place
/// and for the hidden ones.
std::vector<std::string> FlagsOf(const CLI::Option& option);

/// A page for man, in its language.
std::string ManualPage(const CLI::App& app);

/// A script that completes words of the command line in bash.
std::string BashCompletion(const CLI::App& app);

}  // namespace imgbasic::host
