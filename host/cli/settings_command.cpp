#include "host/cli/settings_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/cli/file_jobs.h"
#include "host/cli/filter_command.h"
#include "host/cli/step_request.h"
#include "host/cli/stored_options.h"
#include "host/cli/text_table.h"
#include "host/filter_words.h"
#include "host/opaque_defaults.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
std::vector<std::string> StoringFilters(const std::string& name) {
    std::vector<std::string> filters;
    std::string known;
    for (const FilterRow& row : kFilterRows) {
        if (row.options.empty()) {
            continue;
        }
        known.append(known.empty() ? "" : ", ").append(row.name);
        if (name.empty() || name == row.name) {
            filters.emplace_back(row.name);
        }
    }
    if (filters.empty()) {
        throw UsageError("'" + name + "' is no filter with stored options; those are " + known);
    }
    return filters;
}

namespace {

/// What to write on the command line for the value; nothing where it needs no word.
std::string FlagText(const OptionValue& stored, const OptionWords& words) {
    const FilterOption& option = *stored.option;
    const std::string value = std::to_string(stored.value);
    const bool isDefault = stored.value == option.initial;
    if (words.flag.empty()) {
        return isDefault ? "" : std::string(" --set ") + option.name + "=" + value;
    }
    if (option.kind == OptionKind::Number) {
        return " " + FlagOf(option, words) + " " + value;
    }
    if (option.kind == OptionKind::Choice) {
        const auto& choice = words.choices[static_cast<size_t>(stored.value)];
        return " " + FlagOf(option, words) + " " + std::string(choice.word);
    }
    if (!isDefault) {
        return " " + FlagOf(option, words);
    }
    return OpaqueDefault(option.name) ? " --" + std::string(words.flag) : "";
}

/// The stored options of a filter as flags; empty when nothing is stored.
std::string FlagsText(const std::string& filter) {
    const std::vector<OptionValue> stored = StoredOptions(filter);
    const bool byRatio = HasStoredRatio(stored);
    std::string text;
    for (const OptionValue& value : stored) {
        const std::string_view name = value.option->name;
        const bool isRatio = name == "RatioWidth" || name == "RatioHeight";
        if (isRatio ? !byRatio : name == "RatioSize") {
            continue;  // RatioSize is what the flags of a ratio imply
        }
        text += FlagText(value,
                         *std::ranges::find(WordsOf(filter).options, name, &OptionWords::option));
    }
    return text.substr(text.empty() ? 0 : 1);
}

void Show(const std::string& name) {
    std::vector<TextRow> rows{{"FILTER", "STORED"}};
    for (const std::string& filter : StoringFilters(name)) {
        if (!StoredOptions(filter).empty()) {
            rows.push_back({filter, FlagsText(filter)});
        }
    }
    const bool any = rows.size() > 1;
    std::fputs(any ? AlignColumns(rows).c_str() : "Nothing is stored.\n", stdout);
}

void Set(const FilterCommand& given) {
    const FilterCommand command = WithFlagOptions(given);
    if (given.size.ratio && !HasStoredRatio(command.options)) {
        throw UsageError("a ratio that is stored is a whole percentage, such as 50");
    }
    if (command.options.empty()) {
        throw UsageError("settings set " + command.filter + " needs an option; --help lists them");
    }
    for (const auto& [option, value] : command.options) {
        if (!option->isStored) {
            throw UsageError(std::string(option->name) + " is not stored; give it to every run");
        }
    }
    StoreOptions(command.filter, command.options);
}

/// Throws UsageError when none of the commands in `app` was given.
void RequireCommand(const CLI::App& app, const std::string& choice) {
    if (app.get_subcommands().empty()) {
        throw UsageError(app.get_name() + " needs " + choice + "; --help tells more");
    }
}

void AddSet(CLI::App& settings) {
    CLI::App* set = settings.add_subcommand("set", "Store options of a filter");
    set->require_subcommand(0, 1);
    set->footer("");
    set->callback([set] { RequireCommand(*set, "a filter"); });
    for (const std::string& filter : StoringFilters("")) {
        CLI::App* subcommand = set->add_subcommand(filter, std::string(WordsOf(filter).summary));
        const auto command = std::make_shared<FilterCommand>();
        command->filter = filter;
        AddStoredOptions(*subcommand, *command);
        subcommand->footer("");
        subcommand->callback([command] { Set(*command); });
    }
}

}  // namespace

void AddSettingsCommand(CLI::App& app) {
    CLI::App* settings = app.add_subcommand(
        "settings", "Show or change the options that --remembered starts runs from");
    settings->require_subcommand(0, 1);
    settings->footer("");
    settings->callback([settings] { RequireCommand(*settings, "show, set or reset"); });
    const auto filter = std::make_shared<std::string>();
    CLI::App* show = settings->add_subcommand("show", "Show what is stored, of one filter or all");
    show->footer("");
    show->add_option("FILTER", *filter, "One filter")->type_name("");
    show->callback([filter] { Show(*filter); });
    AddSet(*settings);
    CLI::App* reset = settings->add_subcommand("reset", "Remove what is stored, of one or all");
    reset->footer("");
    reset->add_option("FILTER", *filter, "One filter")->type_name("");
    reset->callback([filter] {
        for (const std::string& stored : StoringFilters(*filter)) {
            RemoveStoredOptions(stored);
        }
    });
}

}  // namespace imgbasic::host
