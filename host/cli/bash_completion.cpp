#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <string_view>

#include "host/cli/command_tree.h"
#include "host/cli/file_options.h"
#include "host/cli/settings_command.h"
#include "host/filter_words.h"
#include "host/options.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

/// Types of values that name files, which the shell completes by itself.
constexpr std::string_view kFileTypes[] = {"FILE", "OUT"};

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text.append(text.empty() ? "" : " ").append(word);
    }
    return text;
}

/// The words that a flag of a command takes; none where it takes something else.
std::vector<std::string> WordsOfFlag(std::string_view filter, std::string_view flag) {
    std::vector<std::string> known = WordsOfFileOption(flag);
    const bool isFilter =
        std::ranges::find(kFilterRows, filter, &FilterRow::name) != kFilterRows.end();
    for (const OptionWords& words :
         isFilter ? WordsOf(filter).options : std::span<const OptionWords>()) {
        if (!words.choices.empty() && FlagOf(*FindOption(filter, words.option), words) == flag) {
            for (const ChoiceWord& choice : words.choices) {
                known.emplace_back(choice.word);
            }
        }
    }
    return known;
}

/// The lines of the script for what follows an option that takes a value.
std::string ValueCase(const std::string& command, const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::vector<std::string> flags = FlagsOf(option);
    if (flags.empty() || option.get_items_expected_max() == 0 ||
        std::ranges::find(kFileTypes, type) != std::end(kFileTypes)) {
        return "";
    }
    std::string patterns;
    for (const std::string& flag : flags) {
        patterns.append(patterns.empty() ? "'" : "|'").append(command).append(" ").append(flag);
        patterns += '\'';
    }
    return "        " + patterns + ") words='" + Joined(WordsOfFlag(command, flags.back())) +
           "' isValue=1 ;;\n";
}

/// What can stand where no value is expected.
std::string WordsCase(const std::string& command, const CLI::App& app) {
    std::vector<std::string> words;
    for (const CLI::Option* option : app.get_options()) {
        const std::vector<std::string> flags = FlagsOf(*option);
        words.insert(words.end(), flags.begin(), flags.end());
    }
    for (const NamedCommand& inner : CommandsOf(app)) {
        if (inner.name.find(' ') == std::string::npos) {
            words.push_back(inner.name);
        }
    }
    if (app.get_option_no_throw("FILTER") != nullptr) {
        std::ranges::move(StoringFilters(""), std::back_inserter(words));
    }
    return "        '" + command + "') words='" + Joined(words) + "' ;;\n";
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
    std::vector<NamedCommand> commands = CommandsOf(app);
    std::string paths;
    for (const NamedCommand& command : commands) {
        paths.append(paths.empty() ? "" : "|").append("'" + command.name + "'");
    }
    commands.push_back({"", &app});
    std::string values;
    std::string words;
    for (const NamedCommand& command : commands) {
        for (const CLI::Option* option : command.app->get_options()) {
            values += ValueCase(command.name, *option);
        }
        words += WordsCase(command.name, *command.app);
    }
    return R"(# Completion of imgbasic's command line in bash; made of the program's own tables.
_imgbasic() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command= word words= isValue=
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        word=${command:+$command }$word
        case $word in
        )" +
           paths + R"() command=$word ;;
        esac
    done
    # Bash takes --flag=value for three words.
    if [[ $current == '=' ]]; then
        current=
    elif [[ $previous == '=' ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case "$command $previous" in
)" + values +
           R"(    esac
    if [[ -z $isValue ]]; then
        case $command in
)" + words +
           R"(        esac
    else
        compopt +o default 2>/dev/null
    fi
    COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -o default -F _imgbasic imgbasic
)";
}

}  // namespace imgbasic::host
