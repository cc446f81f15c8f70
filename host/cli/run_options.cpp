#include "host/cli/run_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <sstream>
#include <string_view>
#include <utility>

#include "host/cli/usage_fault.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

constexpr const char* kStepOption = "--step";
/// Begins every value: instead of an empty one the parser would take the next argument.
constexpr std::string_view kStepMark = ":";

/// The filter that a step names. Throws CLI::ValidationError.
std::string FilterOf(const std::string& step, const std::vector<std::string>& words) {
    std::vector<std::string> filters(std::size(kFilterRows));
    std::ranges::transform(kFilterRows, filters.begin(), &FilterRow::name);
    std::string word = words.empty() ? "" : words.front();
    if (std::ranges::find(filters, word) == filters.end()) {
        throw CLI::ValidationError(step, DescribeUnknown(word, filters));
    }
    return word;
}

/// Reads a filter and its options by the parser of the filter's own command; `step` names it in
/// errors. Throws CLI::ValidationError.
FilterCommand ParseStep(const std::string& step, const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
    FilterCommand command;
    command.filter = FilterOf(step, words);
    CLI::App parser("", command.filter);
    parser.set_help_flag();
    AddFilterOptions(parser, command);
    // The parser takes the last argument for the first.
    words.erase(words.begin());
    std::ranges::reverse(words);
    try {
        parser.parse(std::move(words));
    } catch (const CLI::ParseError& fault) {
        throw CLI::ValidationError(step, DescribeFault(parser, fault));
    }
    return command;
}

/// Where the program's command stands, behind the options that every command has.
auto FindCommand(std::vector<std::string>& arguments) {
    auto argument = arguments.begin();
    while (argument != arguments.end() && argument->starts_with('-')) {
        const bool hasValue = *argument == "--module" && std::next(argument) != arguments.end();
        std::advance(argument, hasValue ? 2 : 1);
    }
    return argument;
}

}  // namespace

void AddRunOptions(CLI::App& app, RunCommand& command) {
    app.add_option_function<std::vector<std::string>>(
           kStepOption,
           [&command](const std::vector<std::string>& steps) {
               for (const std::string& step : steps) {
                   const std::string text = step.substr(kStepMark.size());
                   const std::string number = std::to_string(command.steps.size() + 1);
                   std::string name = "step ";
                   name.append(number).append(", \"").append(text).append("\"");
                   command.steps.push_back(ParseStep(name, text));
               }
           })
        ->allow_extra_args(false)
        ->group("");
    AddFileOptions(app, command.files);
    app.footer(
        "\nEvery STEP is a filter with its options, as one word of the shell. The picture goes\n"
        "from step to step as it is, without being rounded to the depth of a file.\n\n"
        "Example: imgbasic run \"scaling --width 640\" \"col_reduce --colors 16\" -- *.jpg -o "
        "out/");
}

std::vector<std::string> WithNamedSteps(std::vector<std::string> arguments) {
    auto step = FindCommand(arguments);
    const auto end = std::find(step, arguments.end(), "--");
    if (step == arguments.end() || *step != kRunCommand || end == arguments.end()) {
        return arguments;
    }
    for (++step; step != end; ++step) {
        if (!step->starts_with('-')) {
            step->insert(0, std::string(kStepOption).append("=").append(kStepMark));
        }
    }
    arguments.erase(end);
    return arguments;
}

}  // namespace imgbasic::host
