#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "host/atomic_file.h"
#include "host/cli/command_tree.h"
#include "host/cli/file_jobs.h"
#include "host/cli/report.h"
#include "host/cli/run_command.h"
#include "host/cli/run_options.h"
#include "host/cli/settings_command.h"
#include "host/cli/show_commands.h"
#include "host/cli/standard_streams.h"
#include "host/cli/usage_fault.h"
#include "host/filter_words.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

constexpr int kUsageStatus = 2;

/// The library's layout of the help without its remarks on what an option excludes or requires;
/// where that matters the texts say it.
class HelpLayout : public CLI::Formatter {
  public:
    HelpLayout() { column_width(26); }

    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override {
        std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
        for (size_t at = help.find("\n\n\n"); at != std::string::npos; at = help.find("\n\n\n")) {
            help.erase(at, 1);
        }
        return help;
    }

    std::string make_option_opts(const CLI::Option* option) const override {
        const std::string type = option->get_type_name();
        return type.empty() ? "" : " " + type;
    }

    std::string make_usage(const CLI::App* app, std::string name) const override {
        std::string usage = "Usage: " + name;
        if (app->get_name() == kRunCommand) {
            usage += " STEP... -- IN... -o OUT [OPTIONS]";
        } else if (app->get_option_no_throw("IN") != nullptr) {
            usage += " IN... -o OUT [OPTIONS]";
        } else if (app->get_option_no_throw("FILTER") != nullptr) {
            usage += " [FILTER]";
        } else if (app->get_option_no_throw("FILE") != nullptr) {
            usage += " FILE";
        } else if (app->get_parent() == nullptr) {
            usage += " [--module FILE] COMMAND ...";
        } else if (!app->get_subcommands({}).empty()) {
            usage += app->get_name() == "set" ? " FILTER OPTIONS" : " COMMAND ...";
        } else if (app->get_parent()->get_name() == "set") {
            usage += " OPTIONS";
        }
        return usage + "\n";
    }
};

using Runner = std::function<void(RunCommand)>;

/// Adds the command of every filter; parsing one calls `run` with it.
void AddFilterCommands(CLI::App& app, const Runner& run) {
    for (const FilterRow& row : kFilterRows) {
        const FilterWords& words = WordsOf(row.name);
        CLI::App* subcommand = app.add_subcommand(row.name, std::string(words.summary));
        const auto command = std::make_shared<RunCommand>();
        command->steps.emplace_back().filter = row.name;
        AddFilterOptions(*subcommand, command->steps.front());
        AddFileOptions(*subcommand, command->files);
        subcommand->set_help_flag("-h,--help", "Show this help")->group(kOtherGroup);
        subcommand->footer("\nExample: imgbasic " + std::string(words.example));
        subcommand->callback([command, run] { run(*command); });
    }
}

/// Adds the command that runs several filters; the same.
void AddRunCommand(CLI::App& app, const Runner& run) {
    CLI::App* subcommand =
        app.add_subcommand(kRunCommand, "Run several filters, one after the other");
    const auto command = std::make_shared<RunCommand>();
    AddRunOptions(*subcommand, *command);
    subcommand->set_help_flag("-h,--help", "Show this help")->group(kOtherGroup);
    subcommand->callback([command, run] {
        if (command->steps.empty()) {
            throw UsageError(
                "run needs its steps in front of --: imgbasic run \"STEP\"... -- IN... -o OUT");
        }
        run(*command);
    });
}

int Run(int argc, char** argv) {
    CLI::App app("Image filters from a plug-in module, run over files.", "imgbasic");
    app.formatter(std::make_shared<HelpLayout>());
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("--version", "imgbasic " IMGBASIC_VERSION, "Show the version");
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.footer("\n`imgbasic COMMAND --help` explains a command.");
    std::filesystem::path modulePath;
    app.add_option("--module", modulePath, "The filter module, instead of the program's own")
        ->type_name("FILE");
    int status = EXIT_SUCCESS;

    const auto loadModule = [&] {
        return LoadModule(modulePath.empty() ? FindModule(IMGBASIC_MODULE_FOLDER) : modulePath);
    };
    const Runner run = [&](RunCommand command) {
        status = RunFilters(loadModule(), std::move(command)) ? EXIT_SUCCESS : EXIT_FAILURE;
    };
    AddFilterCommands(app, run);
    AddRunCommand(app, run);
    app.add_subcommand("list", "Show what the module's filters are called and can do")
        ->footer("")
        ->callback([&] { ListFilters(loadModule()); });
    std::filesystem::path file;
    auto* info = app.add_subcommand("info", "Show the size and the layers of an image");
    info->add_option("FILE", file, "An image")->required()->type_name("");
    info->footer("");
    info->callback([&] { ShowFile(file); });
    AddSettingsCommand(app);
    AddGeneratedTexts(app);

    try {
        std::vector<std::string> arguments = WithNamedSteps({argv + 1, argv + argc});
        std::ranges::reverse(arguments);
        app.parse(std::move(arguments));
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& fault) {
        throw UsageError(DescribeFaultAndHelp(app, fault));
    }
    if (app.get_subcommands().empty()) {
        throw UsageError("a command is missing; --help lists them");
    }
    return status;
}

}  // namespace
}  // namespace imgbasic::host

int main(int argc, char** argv) {
    using namespace imgbasic::host;
    const Report report(false);
    SecureStandardStreams();
    RemoveBegunOutputOnSignals();
    try {
        const int status = Run(argc, argv);
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            throw FileError("standard output: cannot be written; look at where it goes");
        }
        return status;
    } catch (const UsageError& fault) {
        report.Error(fault.what());
        return kUsageStatus;
    } catch (const std::bad_alloc&) {
        report.Error("there is not enough memory; make the image smaller");
        return EXIT_FAILURE;
    } catch (const std::exception& fault) {
        report.Error(fault.what());
        return EXIT_FAILURE;
    }
}
