#include "host/cli/run_command.h"

#include <chrono>
#include <utility>

#include "host/cli/file_jobs.h"
#include "host/cli/file_run.h"
#include "host/cli/report.h"
#include "host/cli/step_request.h"
#include "host/cli/stored_options.h"
#include "host/cli/worker_pool.h"
#include "host/opaque_defaults.h"

namespace imgbasic::host {
namespace {

void CompleteSteps(std::vector<FilterCommand>& steps) {
    for (size_t index = 0; index < steps.size(); ++index) {
        try {
            steps[index] = Completed(steps[index]);
        } catch (const UsageError& fault) {
            throw UsageError(StepName(steps, index) + fault.what());
        }
    }
}

void TellNotes(const std::vector<FilterCommand>& steps, const Report& report) {
    for (size_t index = 0; index < steps.size(); ++index) {
        for (const std::string& note : steps[index].notes) {
            report.Note(StepName(steps, index) + note);
        }
    }
}

/// The objects that the module makes for running the steps over many files.
std::vector<FilterObject> BatchesFor(const Module& module, const RunCommand& command,
                                     size_t files) {
    std::vector<FilterObject> batches(command.steps.size());
    for (size_t index = 0; index < batches.size(); ++index) {
        const FilterCommand& step = command.steps[index];
        if (files < 2 || !module.isBatchEnable(step.filter.c_str())) {
            continue;
        }
        bool cancelled = false;
        batches[index] = PrepareBatch(module, step.filter, nullptr, cancelled);
        if (cancelled) {
            throw UsageError("cancelled");
        }
    }
    return batches;
}

/// Stores what the steps ran with where they ask for it; false when that failed, which is reported.
bool Remember(const std::vector<FilterCommand>& steps, const Report& report) {
    bool stored = true;
    for (const FilterCommand& step : steps) {
        if (!step.remember) {
            continue;
        }
        std::vector<OptionValue> options;
        for (const FilterOption& option : OptionsOf(step.filter)) {
            // What depends on the picture is not this one's for all.
            if (!OpaqueDefault(option.name)) {
                options.push_back({&option, option.initial});
            }
        }
        options.insert(options.end(), step.options.begin(), step.options.end());
        try {
            StoreOptions(step.filter, options);
        } catch (const std::runtime_error& fault) {
            report.Error(fault.what());
            stored = false;
        }
    }
    return stored;
}

}  // namespace

bool RunFilters(const Module& module, RunCommand command) {
    const auto start = std::chrono::steady_clock::now();
    CompleteSteps(command.steps);
    const Report report(command.files.quiet);
    TellNotes(command.steps, report);
    const std::vector<FileJob> jobs = PlanJobs(command.files);
    const size_t workers = command.files.jobs;
    auto batches = BatchesFor(module, command, jobs.size());
    const PlannedRun plan{module, std::move(command), std::move(batches)};
    const size_t failed = DoJobs(jobs, workers, report, [&](const FileJob& job) {
        return FileRun(plan, job, report).Run();
    });
    if (jobs.size() > 1) {
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        report.Summary(jobs.size(), failed, time.count());
    }
    const bool stored = failed == jobs.size() || Remember(plan.command.steps, report);
    return failed == 0 && stored;
}

}  // namespace imgbasic::host
